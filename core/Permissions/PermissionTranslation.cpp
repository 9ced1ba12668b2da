#include "core/Permissions/PermissionTranslation.h"

#include <array>
#include <span>

#include "core/Permissions/PermissionStatus.h"

namespace quillon {
namespace {

using Key = VantariKey;

constexpr std::array standard{ConsentStatus::notDetermined, ConsentStatus::declined, ConsentStatus::declined,
                              ConsentStatus::granted, ConsentStatus::granted};

// The first `count` values follow the standard table; others give notDetermined.
ConsentStatus below(int count, int value) noexcept {
  return value >= 0 && value < count ? standard[static_cast<std::size_t>(value)] : ConsentStatus::notDetermined;
}

ConsentStatus lookedUp(std::span<const PermissionStatus> statuses, int value) noexcept {
  const bool known = value >= 0 && static_cast<std::size_t>(value) < statuses.size();
  return consentStatus(known ? statuses[static_cast<std::size_t>(value)] : PermissionStatus::unknown);
}

// The sources' values, in order from 0.
constexpr std::array notifications{PermissionStatus::notDetermined, PermissionStatus::denied,
                                   PermissionStatus::authorized, PermissionStatus::provisional,
                                   PermissionStatus::ephemeral};
constexpr std::array bluetooth{PermissionStatus::notDetermined, PermissionStatus::restricted, PermissionStatus::denied,
                               PermissionStatus::authorizedAlways};
constexpr std::array speech{PermissionStatus::notDetermined, PermissionStatus::denied, PermissionStatus::restricted,
                            PermissionStatus::authorized};
constexpr std::array home{PermissionStatus::notDetermined, PermissionStatus::restricted, PermissionStatus::authorized,
                          PermissionStatus::unknown, PermissionStatus::unknown};
// The availability of health data says nothing about access to it.
constexpr std::array health{PermissionStatus::notAvailable, PermissionStatus::notDetermined};
// No sensor, a usable sensor, an unusable sensor.
constexpr std::array biometrics{PermissionStatus::notAvailable, PermissionStatus::authorized, PermissionStatus::denied};

}  // namespace

ConsentStatus consentFromPlatformValue(VantariKey::Case key, std::optional<int> answer) noexcept {
  if (!answer) return consentStatus(PermissionStatus::notAvailable);
  const int value = *answer;
  switch (key) {
    case Key::locationWhenInUseUsageDescription:
    case Key::locationAlwaysUsageDescription:
    case Key::locationAlwaysAndWhenInUseUsageDescription:
    case Key::photoLibraryUsageDescription:
    case Key::photoLibraryAddUsageDescription:
    case Key::calendarsUsageDescription:
    case Key::remindersUsageDescription:
      return below(5, value);
    case Key::cameraUsageDescription:
    case Key::cameraBroadcastUsageDescription:
    case Key::microphoneUsageDescription:
    case Key::microphoneBroadcastUsageDescription:
    case Key::contactsUsageDescription:
    case Key::motionUsageDescription:
    case Key::siriUsageDescription:
    case Key::userTrackingUsageDescription:
    case Key::appleMusicUsageDescription:
      return below(4, value);
    case Key::userNotificationsUsageDescription:
      return lookedUp(notifications, value);
    case Key::bluetoothPeripheralUsageDescription:
    case Key::bluetoothAlwaysUsageDescription:
      return lookedUp(bluetooth, value);
    case Key::speechRecognitionUsageDescription:
      return lookedUp(speech, value);
    case Key::homeKitUsageDescription:
      return lookedUp(home, value);
    case Key::healthShareUsageDescription:
    case Key::healthUpdateUsageDescription:
      return lookedUp(health, value);
    case Key::faceIDUsageDescription:
      return lookedUp(biometrics, value);
    case Key::nfcReaderUsageDescription:
      return value != 0 ? ConsentStatus::granted : ConsentStatus::declined;
    case Key::localNetworkUsageDescription:
    case Key::fileProviderDomainUsageDescription:
    case Key::systemExtensionUsageDescription:
    case Key::custom:
      break;
  }
  return ConsentStatus::notDetermined;
}

ConsentStatus consentFromInformation(const std::optional<std::string>& entry) noexcept {
  if (!entry) return consentStatus(PermissionStatus::notAvailable);
  if (entry->empty()) return consentStatus(PermissionStatus::notDetermined);
  for (const auto status : {PermissionStatus::authorized, PermissionStatus::denied, PermissionStatus::restricted}) {
    if (*entry == rawValue(status)) return consentStatus(status);
  }
  return consentStatus(PermissionStatus::unknown);
}

}  // namespace quillon
