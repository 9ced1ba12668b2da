#include "core/Json/JsonWriter.h"

#include <array>
#include <charconv>

#include "core/Json/JsonType.h"
#include "core/Text/Ascii.h"
#include "core/Text/Utf8.h"

namespace quillon {
namespace json {
namespace {

enum class Byte : std::uint8_t { plain, escaped, multibyte };

constexpr std::array<Byte, 256> kBytes = [] {
  std::array<Byte, 256> bytes{};
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    bytes[i] = i < 0x20 || i == '"' || i == '\\' ? Byte::escaped : i < 0x80 ? Byte::plain : Byte::multibyte;
  }
  return bytes;
}();

Byte kindOf(char c) {
  return kBytes[static_cast<unsigned char>(c)];
}

void writeEscape(std::string& json, char c) {
  constexpr std::string_view kNamed = "\"\\\b\f\n\r\t";
  constexpr std::string_view kNames = "\"\\bfnrt";
  json += '\\';
  if (const std::size_t named = kNamed.find(c); named != std::string_view::npos) {
    json += kNames[named];
  } else {
    json += "u00";
    appendHex(json, c);
  }
}

}  // namespace

void writeText(std::string& json, std::string_view text) {
  json += '"';
  while (!text.empty()) {
    std::size_t plain = 0;
    while (plain < text.size() && kindOf(text[plain]) == Byte::plain) ++plain;
    json += text.substr(0, plain);
    text.remove_prefix(plain);
    if (text.empty()) break;
    if (kindOf(text.front()) == Byte::escaped) {
      writeEscape(json, text.front());
      text.remove_prefix(1);
    } else if (const std::size_t length = utf8Length(text); length > 0) {
      json += text.substr(0, length);
      text.remove_prefix(length);
    } else {
      json += "\uFFFD";
      text.remove_prefix(1);
    }
  }
  json += '"';
}

void writeInteger(std::string& json, std::int64_t value) {
  std::array<char, 20> digits;  // "-9223372036854775808"
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  json.append(digits.data(), end);
}

}  // namespace json

void writeJson(std::string& json, const JsonType& type, const void* record) {
  type.write(json, record);
}

}  // namespace quillon
