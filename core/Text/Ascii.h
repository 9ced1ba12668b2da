// ASCII text functions, independent of the locale.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace quillon {

[[nodiscard]] constexpr char lowerCase(char c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
[[nodiscard]] constexpr char upperCase(char c) noexcept {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
[[nodiscard]] constexpr bool isLetter(char c) noexcept {
  return lowerCase(c) >= 'a' && lowerCase(c) <= 'z';
}
[[nodiscard]] constexpr bool isDigit(char c) noexcept {
  return c >= '0' && c <= '9';
}

[[nodiscard]] inline std::string lowerCase(std::string text) {
  std::ranges::transform(text, text.begin(), [](char c) { return lowerCase(c); });
  return text;
}
[[nodiscard]] inline std::string upperCase(std::string text) {
  std::ranges::transform(text, text.begin(), [](char c) { return upperCase(c); });
  return text;
}

[[nodiscard]] constexpr bool equalButForCase(std::string_view left, std::string_view right) noexcept {
  return std::ranges::equal(left, right, {}, [](char c) { return lowerCase(c); }, [](char c) { return lowerCase(c); });
}

// Without leading and trailing white space.
[[nodiscard]] constexpr std::string_view trimmed(std::string_view text) noexcept {
  constexpr std::string_view blanks = " \t\r\n";
  const auto first = text.find_first_not_of(blanks);
  return first == std::string_view::npos ? std::string_view()
                                         : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

inline constexpr std::string_view hexDigits = "0123456789abcdef";
inline constexpr std::string_view upperHexDigits = "0123456789ABCDEF";

// The value of a hexadecimal digit; -1 for any other character.
[[nodiscard]] constexpr int hexValue(char c) noexcept {
  const auto at = hexDigits.find(lowerCase(c));
  return at == std::string_view::npos ? -1 : static_cast<int>(at);
}

// Appends the two hexadecimal digits of a byte.
inline void appendHex(std::string& text, char c, std::string_view digits = hexDigits) {
  const auto byte = static_cast<unsigned char>(c);
  text += digits[byte >> 4];
  text += digits[byte & 15];
}

}  // namespace quillon
