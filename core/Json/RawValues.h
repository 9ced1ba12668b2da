// One table of cases and texts per enumeration, read in both directions.
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

/// The text of @p value in @p table; empty for a value that is no case of E.
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

/// Defines rawValue() and fromRawValue() of enumeration E from the rows that follow. Used in namespace quillon:
/// QUILLON_RAW_VALUES(Mode, {Mode::draft, "draft"}, {Mode::live, "live"});
#define QUILLON_RAW_VALUES(E, ...)                                \
  namespace {                                                     \
  constexpr RawValue<E> rawValuesOf##E[] = {__VA_ARGS__};         \
  }                                                               \
  std::string_view rawValue(E value) noexcept {                   \
    return textOf<E>(rawValuesOf##E, value);                      \
  }                                                               \
  template <>                                                     \
  std::optional<E> fromRawValue(std::string_view text) noexcept { \
    return caseOf<E>(rawValuesOf##E, text);                       \
  }                                                               \
  static_assert(true, "a semicolon follows")
