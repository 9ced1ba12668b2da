// What a platform says about a permission, in the words that all platforms share.
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

// The consent that a status stands for.
[[nodiscard]] ConsentStatus consentStatus(PermissionStatus status) noexcept;

}  // namespace quillon
