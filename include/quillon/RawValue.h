/// @file
/// Enumerations with a fixed text on the wire and in the store.
#pragma once

#include <optional>
#include <string_view>

namespace quillon {

/// The case of E whose raw value is exactly @p text (case-sensitive); nullopt if there is none. Available for every
/// enumeration of this library with an overload of rawValue(). Thread-safe, never fails.
///
/// @code
/// std::optional<quillon::ConsentStatus> status = quillon::fromRawValue<quillon::ConsentStatus>("granted");
/// @endcode
template <class E>
[[nodiscard]] std::optional<E> fromRawValue(std::string_view text) noexcept;

}  // namespace quillon
