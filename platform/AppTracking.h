// The device's app-tracking authorization.
#pragma once

#include <optional>
#include <string>

namespace quillon {

// The values are the standard ones of the permission table.
enum class TrackingAuthorization { notDetermined = 0, restricted = 1, denied = 2, authorized = 3 };

// Thread-safe; never waits.
class AppTracking {
 public:
  virtual ~AppTracking() = default;

  virtual TrackingAuthorization authorization() const = 0;
  // The advertising identifier in canonical text form; nullopt where the device has none.
  virtual std::optional<std::string> advertisingIdentifier() const = 0;
};

}  // namespace quillon
