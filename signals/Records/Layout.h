// The layout of a segment: a table with one line per field, from which reading, writing, JSON and the application's
// keys are derived.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace quillon::signals {

// The binary encoding of a field. In JSON a boolean is true or false, letters are a string, fields with several numbers
// an array, all others a number.
enum class FieldKind : std::uint8_t {
  integer,       // `bits` bits
  boolean,       // one bit
  time,          // 36 bits: tenths of a second since 1970; in JSON whole seconds
  letters,       // `count` letters of six bits each
  set,           // bit field of `count` bits, the first for ID 1
  sizedSet,      // bit field with as many bits as the last integer field says
  values,        // `count` numbers of `bits` bits
  vendors,       // a set of vendors, as ranges or a bit field
  sections,      // a set, as Fibonacci-coded ranges
  restrictions,  // sets of vendors by purpose and restriction type
};

// Of a time.
inline constexpr std::int64_t kTimeUnitsASecond = 10;

struct Field {
  std::string_view name;
  FieldKind kind = FieldKind::integer;
  unsigned bits = 0;
  unsigned count = 1;
  std::optional<std::int64_t> always = std::nullopt;  // the only valid value
};

// Make the fields of the tables.
[[nodiscard]] constexpr Field integer(std::string_view name, unsigned bits) {
  return {name, FieldKind::integer, bits};
}
[[nodiscard]] constexpr Field always(std::string_view name, unsigned bits, std::int64_t value) {
  return {name, FieldKind::integer, bits, 1, value};
}
[[nodiscard]] constexpr Field boolean(std::string_view name) {
  return {name, FieldKind::boolean, 1};
}
[[nodiscard]] constexpr Field time(std::string_view name) {
  return {name, FieldKind::time, 36};
}
[[nodiscard]] constexpr Field letters(std::string_view name, unsigned count) {
  return {name, FieldKind::letters, 6, count};
}
[[nodiscard]] constexpr Field set(std::string_view name, unsigned count) {
  return {name, FieldKind::set, 1, count};
}
[[nodiscard]] constexpr Field sizedSet(std::string_view name) {
  return {name, FieldKind::sizedSet};
}
[[nodiscard]] constexpr Field values(std::string_view name, unsigned bits, unsigned count) {
  return {name, FieldKind::values, bits, count};
}
[[nodiscard]] constexpr Field vendors(std::string_view name) {
  return {name, FieldKind::vendors};
}
[[nodiscard]] constexpr Field sections(std::string_view name) {
  return {name, FieldKind::sections};
}
[[nodiscard]] constexpr Field restrictions(std::string_view name) {
  return {name, FieldKind::restrictions};
}

// A segment or sub-section, with its name in JSON.
struct Layout {
  std::string_view name;
  std::span<const Field> fields;
};

}  // namespace quillon::signals
