// Enumerations with fixed texts: one table of case and text per enumeration, read in both directions.
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "quillon/RawValue.h"

namespace quillon {

template <class E>
struct RawValue {
  E value;
  std::string_view text;
};

/// The text of @p value in @p table; empty for a number that is no case of E.
template <class E>
[[nodiscard]] constexpr std::string_view textOf(std::span<const RawValue<E>> table, E value) noexcept {
  for (const RawValue<E>& row : table) {
    if (row.value == value) return row.text;
  }
  return {};
}

/// The case of @p table whose text is exactly @p text.
template <class E>
[[nodiscard]] constexpr std::optional<E> caseOf(std::span<const RawValue<E>> table, std::string_view text) noexcept {
  for (const RawValue<E>& row : table) {
    if (row.text == text) return row.value;
  }
  return std::nullopt;
}

}  // namespace quillon
