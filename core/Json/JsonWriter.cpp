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

namespace {

void writeArray(std::string& json, const JsonType& type, const void* array) {
  const JsonType& element = type.element();
  json += '[';
  for (auto rest = type.elements(array); !rest.empty(); rest = rest.subspan(element.size)) {
    separate(json, '[');
    writeJson(json, element, rest.data());
  }
  json += ']';
}

void writeMap(std::string& json, const JsonType& type, const void* map) {
  struct Writing {
    std::string& json;
    const JsonType& element;
  } writing{json, type.element()};
  json += '{';
  type.each(
      map,
      [](void* context, std::string_view key, const void* element) {
        const auto& [text, elementType] = *static_cast<Writing*>(context);
        separate(text, '{');
        writeText(text, key);
        text += ':';
        if (element) {
          writeJson(text, elementType, element);
        } else {
          text += "null";
        }
      },
      &writing);
  json += '}';
}

void writeRecord(std::string& json, const JsonType& type, const void* record) {
  json += '{';
  for (const JsonField& field : type.fields) {
    const void* const value = field.get ? field.get(record) : nullptr;
    if (value) {
      writeKey(json, field.key);
      writeJson(json, field.type(), value);
    } else if (!field.get) {
      writeKey(json, field.key);
      writeText(json, field.constant);
    }
  }
  json += '}';
}

}  // namespace
}  // namespace json

void writeJson(std::string& json, const JsonType& type, const void* value) {
  using Kind = JsonType::Kind;
  switch (type.kind) {
    case Kind::boolean:
      json += *static_cast<const bool*>(value) ? "true" : "false";
      break;
    case Kind::integer:
      json::writeInteger(json, *static_cast<const std::int64_t*>(value));
      break;
    case Kind::text:
      json::writeText(json, *static_cast<const std::string*>(value));
      break;
    case Kind::symbol:
      json::writeText(json, type.text(value));
      break;
    case Kind::array:
      json::writeArray(json, type, value);
      break;
    case Kind::map:
      json::writeMap(json, type, value);
      break;
    case Kind::record:
      json::writeRecord(json, type, value);
      break;
  }
}

}  // namespace quillon
