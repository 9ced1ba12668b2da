#include "core/Text/LogText.h"

#include <algorithm>

#include "core/Text/Ascii.h"
#include "core/Text/Utf8.h"

namespace quillon {
namespace {

constexpr std::size_t maximumBytes = 64 << 10;
constexpr std::size_t excerptBytes = 64;

constexpr bool isBetween(unsigned code, unsigned first, unsigned last) {
  return code >= first && code <= last;
}

// The code point of a two- or three-byte character; longer ones are never escaped.
unsigned codeOf(std::string_view character) {
  const auto bits = [&](std::size_t i, unsigned mask) { return static_cast<unsigned char>(character[i]) & mask; };
  if (character.size() == 2) return bits(0, 0x1f) << 6 | bits(1, 0x3f);
  return bits(0, 0x0f) << 12 | bits(1, 0x3f) << 6 | bits(2, 0x3f);
}

// Control characters beyond ASCII, line and paragraph separators, and bidirectional controls.
bool isUnsafeForTerminal(unsigned code) {
  return isBetween(code, 0x80, 0x9f) || code == 0x61c || isBetween(code, 0x200e, 0x200f) ||
         isBetween(code, 0x2028, 0x202e) || isBetween(code, 0x2066, 0x2069);
}

void appendByte(std::string& text, char c) {
  text += "\\x";
  appendHex(text, c);
}

void appendCode(std::string& text, unsigned code) {
  text += "\\u";
  for (int shift = 12; shift >= 0; shift -= 4) text += hexDigits[code >> shift & 15];
}

enum class LineBreaks { escaped, kept };

bool isControl(char c) {
  return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
}

void appendControl(std::string& text, char c) {
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
      appendByte(text, c);
  }
}

std::string escaped(std::string_view value, LineBreaks lineBreaks) {
  std::string text;
  text.reserve(value.size());
  for (std::size_t length = 0; !value.empty(); value.remove_prefix(length)) {
    length = utf8Length(value);
    const char c = value.front();
    if (length > 1) {
      const std::string_view character = value.substr(0, length);
      const unsigned code = length < 4 ? codeOf(character) : 0;
      if (isUnsafeForTerminal(code)) {
        appendCode(text, code);
      } else {
        text += character;
      }
    } else if (length == 0) {
      appendByte(text, c);
      length = 1;
    } else if (isControl(c) && (lineBreaks == LineBreaks::escaped || (c != '\n' && c != '\t'))) {
      appendControl(text, c);
    } else {
      text += c;
    }
  }
  return text;
}

}  // namespace

std::string escapedForLog(std::string_view value) {
  std::string text = escaped(value.substr(0, maximumBytes), LineBreaks::escaped);
  if (value.size() > maximumBytes) text += "… (" + std::to_string(value.size()) + " bytes)";
  return text;
}

std::string excerptForLog(std::string_view value) {
  std::size_t end = std::min(value.size(), excerptBytes);
  while (end > 0 && end < value.size() && (static_cast<unsigned char>(value[end]) & 0xC0) == 0x80) --end;
  std::string text = escaped(value.substr(0, end), LineBreaks::escaped);
  if (end < value.size()) text += "...";
  return text;
}

std::string printableForLog(std::string_view message) {
  return escaped(message, LineBreaks::kept);
}

}  // namespace quillon
