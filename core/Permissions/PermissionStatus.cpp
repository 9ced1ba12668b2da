#include "core/Permissions/PermissionStatus.h"

#include <array>

namespace quillon {
namespace {

struct Row {
  PermissionStatus status;
  std::string_view text;
  ConsentStatus consent;
};

// In the order of the enumeration.
constexpr std::array rows{
    Row{PermissionStatus::authorized, "Authorized", ConsentStatus::granted},
    Row{PermissionStatus::authorizedAlways, "Always Authorized", ConsentStatus::granted},
    Row{PermissionStatus::authorizedWhenInUse, "Authorized When In Use", ConsentStatus::granted},
    Row{PermissionStatus::denied, "Denied", ConsentStatus::declined},
    Row{PermissionStatus::restricted, "Restricted", ConsentStatus::declined},
    Row{PermissionStatus::notDetermined, "Not Determined", ConsentStatus::notDetermined},
    Row{PermissionStatus::unknown, "Unknown", ConsentStatus::notDetermined},
    Row{PermissionStatus::provisional, "Provisional", ConsentStatus::granted},
    Row{PermissionStatus::limited, "Limited", ConsentStatus::granted},
    Row{PermissionStatus::notAvailable, "Not Available", ConsentStatus::notDetermined},
    Row{PermissionStatus::fullAccess, "Full Access", ConsentStatus::granted},
    Row{PermissionStatus::writeOnly, "Write Only", ConsentStatus::granted},
    Row{PermissionStatus::ephemeral, "Ephemeral", ConsentStatus::granted},
};

const Row& row(PermissionStatus status) noexcept {
  return rows[static_cast<std::size_t>(status)];
}

}  // namespace

std::string_view rawValue(PermissionStatus status) noexcept {
  return row(status).text;
}

ConsentStatus consentStatus(PermissionStatus status) noexcept {
  return row(status).consent;
}

}  // namespace quillon
