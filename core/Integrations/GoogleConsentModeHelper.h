// The user's purpose consents as the four consent-mode signals, and their way to the host's analytics library.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "core/Persistance/UserDefaults/UserDefaultManager.h"
#include "quillon/GoogleConsentType.h"
#include "quillon/MainConfiguration.h"

namespace quillon {

// Whether each signal is granted.
using ConsentMap = std::map<GoogleConsentType, bool>;

// The mapping for a location such as "US#CA": the region override that lists it, else the one that lists its state,
// else the default mapping. Null when there is none. Owned by the configuration.
[[nodiscard]] const DefaultMapping* consentModeMapping(const GcmConfig& configuration,
                                                       const std::optional<std::string>& location);

// A signal is granted when it lists purposes and every one of them is.
[[nodiscard]] ConsentMap consentMap(const DefaultMapping& mapping, const StoredValues& stored);

// Thread-safe.
class GoogleConsentModeHelper {
 public:
  // All must outlive it.
  GoogleConsentModeHelper(const Platform& platform, UserDefaultManager& store, SDKLogger& logger)
      : platform_(platform), store_(store), logger_(logger) {}

  // Computes the signals from the stored consents and sends them. Does nothing unless the configuration drives consent
  // mode.
  void updateFirebaseConsent(const MainConfiguration& mainConfiguration, const std::optional<std::string>& location);

  // Sends the signals; an application without an analytics library that takes them is only logged.
  void setFirebaseConsent(const ConsentMap& consentMap);

 private:
  const Platform& platform_;
  UserDefaultManager& store_;
  SDKLogger& logger_;
};

}  // namespace quillon
