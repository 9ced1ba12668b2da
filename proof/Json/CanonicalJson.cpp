#include "proof/Json/CanonicalJson.h"

#include <algorithm>
#include <array>
#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <charconv>
#include <string_view>
#include <vector>

namespace quillon::proof {
namespace {

namespace json = boost::json;

// UTF-16 code-unit order, computed on UTF-8: byte order, except that U+E000 to U+FFFF sort after surrogate pairs.
bool isBefore(std::string_view left, std::string_view right) {
  const auto [l, r] = std::ranges::mismatch(left, right);
  if (l == left.end() || r == right.end()) return r != right.end();
  const auto rank = [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte == 0xEE || byte == 0xEF ? byte + 0x100 : int{byte};
  };
  return rank(*l) < rank(*r);
}

void write(std::string& text, std::string_view string) {
  text += '"';
  for (const char c : string) {
    if (c == '"' || c == '\\') {
      text += '\\';
      text += c;
    } else if (static_cast<unsigned char>(c) >= 0x20) {
      text += c;
    } else if (const auto found = std::string_view("\b\t\n\f\r").find(c); found != std::string_view::npos) {
      text += '\\';
      text += "btnfr"[found];
    } else {
      constexpr std::string_view digits = "0123456789abcdef";
      text += "\\u00";
      text += digits[static_cast<unsigned char>(c) >> 4];
      text += digits[c & 15];
    }
  }
  text += '"';
}

// ECMAScript's number format: the shortest digits that round-trip, in decimal or exponent form by magnitude.
void write(std::string& text, double number) {
  if (number == 0) {
    text += '0';
    return;
  }
  std::array<char, 40> buffer;
  const auto end = std::to_chars(buffer.begin(), buffer.end(), number, std::chars_format::scientific).ptr;
  std::string_view written(buffer.begin(), end);
  if (written.starts_with('-')) {
    text += '-';
    written.remove_prefix(1);
  }
  const auto e = written.find('e');
  std::string digits(written.substr(0, e));
  std::erase(digits, '.');
  const bool isSmall = written[e + 1] == '-';
  int exponent = 0;
  std::from_chars(written.data() + e + 2, written.data() + written.size(), exponent);
  const int count = static_cast<int>(digits.size());
  const int point = (isSmall ? -exponent : exponent) + 1;  // digits before the decimal point
  if (count <= point && point <= 21) {
    text += digits.append(static_cast<std::size_t>(point - count), '0');
  } else if (0 < point && point <= 21) {
    text += digits.insert(static_cast<std::size_t>(point), 1, '.');
  } else if (-6 < point && point <= 0) {
    text += "0." + std::string(static_cast<std::size_t>(-point), '0') + digits;
  } else {
    if (count > 1) digits.insert(1, 1, '.');
    text += digits + (isSmall ? "e-" : "e+") + std::to_string(exponent);
  }
}

void write(std::string& text, const json::value& value);

void write(std::string& text, const json::object& object) {
  std::vector<const json::key_value_pair*> members;
  members.reserve(object.size());
  for (const auto& member : object) members.push_back(&member);
  std::ranges::sort(members, isBefore, [](const auto* member) { return std::string_view(member->key()); });
  text += '{';
  for (const auto* member : members) {
    if (member != members.front()) text += ',';
    write(text, std::string_view(member->key()));
    text += ':';
    write(text, member->value());
  }
  text += '}';
}

void write(std::string& text, const json::array& array) {
  text += '[';
  for (const auto& element : array) {
    if (&element != &array.front()) text += ',';
    write(text, element);
  }
  text += ']';
}

void write(std::string& text, const json::value& value) {
  switch (value.kind()) {
    case json::kind::null:
      text += "null";
      break;
    case json::kind::bool_:
      text += value.get_bool() ? "true" : "false";
      break;
    case json::kind::int64:
      text += std::to_string(value.get_int64());
      break;
    case json::kind::uint64:
      text += std::to_string(value.get_uint64());
      break;
    case json::kind::double_:
      write(text, value.get_double());
      break;
    case json::kind::string:
      write(text, std::string_view(value.get_string()));
      break;
    case json::kind::array:
      write(text, value.get_array());
      break;
    case json::kind::object:
      write(text, value.get_object());
      break;
  }
}

}  // namespace

std::string canonicalJson(const json::value& value) {
  std::string text;
  write(text, value);
  return text;
}

std::string canonicalJson(const json::object& object) {
  std::string text;
  write(text, object);
  return text;
}

}  // namespace quillon::proof
