// Appends pieces of a JSON document to a string. Locale-independent.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quillon::json {

/// A quoted text. Invalid UTF-8 becomes U+FFFD.
void writeText(std::string& json, std::string_view text);
void writeInteger(std::string& json, std::int64_t value);

/// A comma, unless the array or object was just opened with @p bracket.
inline void separate(std::string& json, char bracket) {
  if (json.back() != bracket) json += ',';
}

/// The key of the next field; @p key needs no escapes.
inline void writeKey(std::string& json, std::string_view key) {
  separate(json, '{');
  json += '"';
  json += key;
  json += "\":";
}

}  // namespace quillon::json
