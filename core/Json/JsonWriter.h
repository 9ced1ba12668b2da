// The pieces of a JSON document, appended to a string. Independent of the locale.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quillon::json {

/// A text with its quotation marks. Bytes that are not UTF-8 become U+FFFD.
void writeText(std::string& json, std::string_view text);
void writeInteger(std::string& json, std::int64_t value);

/// A comma, unless the array or object has just been opened with @p bracket.
inline void separate(std::string& json, char bracket) {
  if (json.back() != bracket) json += ',';
}

/// The key of the next field of the object under way; @p key needs no escapes.
inline void writeKey(std::string& json, std::string_view key) {
  separate(json, '{');
  json += '"';
  json += key;
  json += "\":";
}

}  // namespace quillon::json
