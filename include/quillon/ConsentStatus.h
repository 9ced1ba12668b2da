/// @file
/// The consent value that is used everywhere: in the store, on the wire and in query results.
#pragma once

#include <string_view>

#include "quillon/RawValue.h"

namespace quillon {

/// What the user decided about one purpose, or what the device says about one permission.
/// The first is what a value-initialised status is: no consent.
enum class ConsentStatus {
  notDetermined,  ///< "not_determined": nobody has decided yet
  granted,        ///< "granted"
  declined,       ///< "declined"
  withDrawn,      ///< "withdrawn": a consent that existed was taken back
};

/// The text under which @p status is stored and uploaded.
[[nodiscard]] std::string_view rawValue(ConsentStatus value) noexcept;

}  // namespace quillon
