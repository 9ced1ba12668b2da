/// @file
/// The body of a consent upload.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "quillon/ConsentStatus.h"
#include "quillon/DecisionHistory.h"
#include "quillon/VantariKey.h"

namespace quillon {

/// A decision on one purpose.
struct PurposeConsent {
  std::int64_t purposeID = 0;
  ConsentStatus consentStatus = ConsentStatus::notDetermined;
  /// Time of the decision, whole seconds since 1970-01-01T00:00:00Z.
  std::int64_t timestamp = 0;
  bool isEssential = false;
  /// `signal` for a privacy signal's decision, else omitted.
  std::optional<DecisionCause> cause = std::nullopt;

  bool operator==(const PurposeConsent&) const = default;
};

/// The state of one app permission.
struct PermissionConsent {
  VantariKey permission = VantariKey(std::string());
  ConsentStatus consentStatus = ConsentStatus::notDetermined;
  /// Time of the state, whole seconds since 1970-01-01T00:00:00Z.
  std::int64_t timestamp = 0;

  bool operator==(const PermissionConsent&) const = default;
};

/// One upload: the subject, the application and the pending decisions.
struct PostConsentsRequest {
  std::string uuid;              ///< the subject identifier
  std::string appUUID;           ///< "app_uuid": the application identifier
  std::string device;            ///< description of the device
  bool implicitConsent = false;  ///< true when the consents are defaults rather than the user's choice
  std::int64_t version = 0;      ///< version of the answered configuration
  std::vector<PurposeConsent> purposeConsents;
  std::vector<PermissionConsent> permissions;
  bool testingMode = false;  ///< "is_test_mode"
  std::string adId;          ///< advertising identifier, empty unless tracking is handled
  std::string bannerInfo;    ///< the compliance type of the banner
  /// The platform family under which the server stores consents; constant.
  static constexpr std::string_view platform = "ios";
  std::optional<std::string> sdkVersion = std::nullopt;  ///< the SDK's own version; omitted when unknown

  bool operator==(const PostConsentsRequest&) const = default;
};

}  // namespace quillon
