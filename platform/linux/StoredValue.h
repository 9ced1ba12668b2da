// A value as a database row: type name and text, both readable in the sqlite3 shell.
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

// nullopt when the type is unknown or the text invalid for it.
[[nodiscard]] std::optional<PropertyValue> fromStored(std::string_view type, std::string_view text);

// Covers key, type and text, so that a text moved to another key or type is detected too.
[[nodiscard]] std::uint32_t storedChecksum(std::string_view key, std::string_view type, std::string_view text);

}  // namespace quillon
