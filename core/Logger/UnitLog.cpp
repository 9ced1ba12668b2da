#include "core/Logger/UnitLog.h"

namespace quillon {
namespace {

constexpr std::size_t maximumBytes = 64 << 10;
constexpr std::string_view hexDigits = "0123456789abcdef";

}  // namespace

std::string escapedForLog(std::string_view value) {
  const std::string_view shown = value.substr(0, maximumBytes);
  std::string text;
  text.reserve(shown.size());
  for (const char c : shown) {
    const auto byte = static_cast<unsigned char>(c);
    switch (c) {
      case '\n':
        text += "\\n";
        break;
      case '\r':
        text += "\\r";
        break;
      case '\t':
        text += "\\t";
        break;
      default:
        if (byte < 0x20 || byte == 0x7f) {
          text.append("\\x").append(1, hexDigits[byte >> 4]).append(1, hexDigits[byte & 15]);
        } else {
          text += c;
        }
    }
  }
  if (value.size() > shown.size()) text += "… (" + std::to_string(value.size()) + " bytes)";
  return text;
}

}  // namespace quillon
