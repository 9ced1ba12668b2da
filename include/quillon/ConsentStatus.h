/// @file
/// The consent value used in the store, on the wire and in query results.
#pragma once

#include <string_view>

#include "quillon/RawValue.h"

namespace quillon {

/// The user's decision on a purpose, or the device's answer for a permission. A value-initialised status is
/// `notDetermined`: no consent.
enum class ConsentStatus {
  notDetermined,  ///< "not_determined": not decided yet
  granted,        ///< "granted"
  declined,       ///< "declined"
  withDrawn,      ///< "withdrawn": an earlier consent was revoked
};

/// The text under which @p status is stored and uploaded.
[[nodiscard]] std::string_view rawValue(ConsentStatus value) noexcept;

}  // namespace quillon
