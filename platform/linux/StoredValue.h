// How a value stands in a row of the database: its type by name and its text, both readable in the sqlite3 shell.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/KeyValueSuite.h"

namespace quillon {

struct StoredValue {
  // "string", "boolean" (true, false), "integer" (decimal), "date" (milliseconds since 1970-01-01 UTC, decimal),
  // "integers" (decimal, a space between them), "strings" (before each its length in bytes and a colon).
  std::string_view type;
  std::string text;
};

[[nodiscard]] StoredValue toStored(const PropertyValue& value);

// Nothing when the type is unknown or the text is not one of that type.
[[nodiscard]] std::optional<PropertyValue> fromStored(std::string_view type, std::string_view text);

// Over all three, so that a text that wandered to another key or type is noticed too.
[[nodiscard]] std::uint32_t storedChecksum(std::string_view key, std::string_view type, std::string_view text);

}  // namespace quillon
