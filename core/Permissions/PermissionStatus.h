// A platform's permission status, in terms common to all platforms.
#pragma once

#include <string_view>

#include "quillon/ConsentStatus.h"

namespace quillon {

enum class PermissionStatus {
  authorized,
  authorizedAlways,
  authorizedWhenInUse,
  denied,
  restricted,
  notDetermined,
  unknown,
  provisional,
  limited,
  notAvailable,
  fullAccess,
  writeOnly,
  ephemeral,
};

[[nodiscard]] std::string_view rawValue(PermissionStatus status) noexcept;

// The consent for a status.
[[nodiscard]] ConsentStatus consentStatus(PermissionStatus status) noexcept;

}  // namespace quillon
