// A fixed tracking authorization; by default that of a device without such a setting.
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "platform/AppTracking.h"

namespace quillon {

// Thread-safe.
class FixedAppTracking : public AppTracking {
 public:
  explicit FixedAppTracking(TrackingAuthorization authorization = TrackingAuthorization::notDetermined,
                            std::optional<std::string> advertisingIdentifier = std::nullopt)
      : authorization_(authorization), advertisingIdentifier_(std::move(advertisingIdentifier)) {}

  TrackingAuthorization authorization() const override { return authorization_; }
  std::optional<std::string> advertisingIdentifier() const override { return advertisingIdentifier_; }

 private:
  const TrackingAuthorization authorization_;
  const std::optional<std::string> advertisingIdentifier_;
};

}  // namespace quillon
