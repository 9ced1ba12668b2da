/// @file
/// Enumerations whose cases have a fixed text on the wire and in the store.
#pragma once

#include <optional>
#include <string_view>

namespace quillon {

/// The case of E whose raw value is exactly @p text (case-sensitive), or nothing when no case has it.
/// Available for every enumeration of this library that has an overload of rawValue().
/// Thread-safe, never fails.
///
/// @code
/// std::optional<quillon::ConsentStatus> status = quillon::fromRawValue<quillon::ConsentStatus>("granted");
/// @endcode
template <class E>
[[nodiscard]] std::optional<E> fromRawValue(std::string_view text) noexcept;

}  // namespace quillon
