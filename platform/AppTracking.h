// The device's answer to "may this application track the user?".
#pragma once

#include <optional>
#include <string>

namespace quillon {

// The numbers are those of the permission table's standard values.
enum class TrackingAuthorization { notDetermined = 0, restricted = 1, denied = 2, authorized = 3 };

// Thread-safe; answers at once.
class AppTracking {
 public:
  virtual ~AppTracking() = default;

  virtual TrackingAuthorization authorization() const = 0;
  // The advertising identifier in its canonical text form; nothing where the device offers none.
  virtual std::optional<std::string> advertisingIdentifier() const = 0;
};

}  // namespace quillon
