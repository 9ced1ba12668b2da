/// @file
/// Identifiers of app permissions.
#pragma once

#include <string>
#include <string_view>

namespace quillon {

/// A device permission: one of 28 known usage-description keys, or any other text (`custom`). A value type; keys are
/// equal when their raw values are.
///
/// @code
/// sdk.get(quillon::VantariKey::cameraUsageDescription);
/// sdk.get(quillon::VantariKey("NSCameraUsageDescription"));  // the same
/// @endcode
class VantariKey {
 public:
  /// The known keys, and `custom`. Scoped, so that a key does not convert to a number.
  enum class Case {
    locationWhenInUseUsageDescription,
    locationAlwaysUsageDescription,
    locationAlwaysAndWhenInUseUsageDescription,
    cameraUsageDescription,
    microphoneUsageDescription,
    photoLibraryUsageDescription,
    photoLibraryAddUsageDescription,
    contactsUsageDescription,
    calendarsUsageDescription,
    remindersUsageDescription,
    motionUsageDescription,
    healthShareUsageDescription,
    healthUpdateUsageDescription,
    bluetoothPeripheralUsageDescription,
    bluetoothAlwaysUsageDescription,
    siriUsageDescription,
    speechRecognitionUsageDescription,
    homeKitUsageDescription,
    userTrackingUsageDescription,
    appleMusicUsageDescription,
    faceIDUsageDescription,
    cameraBroadcastUsageDescription,
    microphoneBroadcastUsageDescription,
    userNotificationsUsageDescription,
    localNetworkUsageDescription,
    fileProviderDomainUsageDescription,
    systemExtensionUsageDescription,
    nfcReaderUsageDescription,
    custom,
  };
  using enum Case;

  /// A known key. For `custom`, use the constructor that takes a text.
  VantariKey(Case known);
  /// The key with this raw value; `custom` unless it is a known one.
  explicit VantariKey(std::string rawValue);

  [[nodiscard]] Case kind() const noexcept { return kind_; }
  /// The usage-description key, such as "NSCameraUsageDescription".
  [[nodiscard]] const std::string& rawValue() const noexcept { return text_; }

  bool operator==(const VantariKey& other) const noexcept { return text_ == other.text_; }
  auto operator<=>(const VantariKey& other) const noexcept { return text_ <=> other.text_; }

 private:
  Case kind_;
  std::string text_;
};

}  // namespace quillon
