// Computes the four consent-mode signals and passes them to the host's analytics library.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <utility>

#include "core/Persistance/UserDefaults/UserDefaultManager.h"
#include "core/Purposes/OptOuts.h"
#include "quillon/GoogleConsentType.h"
#include "quillon/MainConfiguration.h"

namespace quillon {

// Whether each signal is granted.
using ConsentMap = std::map<GoogleConsentType, bool>;

// The mapping for a location such as "US#CA": the region override that lists it, else the one that lists its state
// alone ("CA"), else the default mapping. Null when there is none. Owned by the configuration.
[[nodiscard]] const DefaultMapping* consentModeMapping(const GcmConfig& configuration,
                                                       const std::optional<std::string>& location);

// A signal is granted when it lists purposes and all of them are granted, and no privacy signal opts out of any.
[[nodiscard]] ConsentMap consentMap(const DefaultMapping& mapping, const StoredValues& stored, const OptOuts& optOuts);

// Thread-safe. Sets of signals are passed on one at a time, each computed from the newest consents, so the last one
// delivered is current.
class GoogleConsentModeHelper {
 public:
  // All must outlive it; `optOuts` returns the current ones. Sends nothing once a stop is requested.
  GoogleConsentModeHelper(const Platform& platform, UserDefaultManager& store, SDKLogger& logger,
                          std::function<OptOuts()> optOuts, std::stop_token stop)
      : platform_(platform), store_(store), logger_(logger), optOuts_(std::move(optOuts)), stop_(std::move(stop)) {}

  // Computes the signals from the stored consents and sends them, or leaves that to the thread currently sending. Does
  // nothing unless the configuration drives consent mode. `location` is the newest known one. Without a configuration,
  // it uses the last one, and only to report that a signal granted before no longer is.
  void updateFirebaseConsent(std::shared_ptr<const MainConfiguration> mainConfiguration,
                             std::optional<std::string> location);

  // Sends the signals; logs when the application has no analytics library that takes them.
  void setFirebaseConsent(const ConsentMap& consentMap);

 private:
  struct Request {
    std::shared_ptr<const MainConfiguration> configuration;
    std::optional<std::string> location;
    bool isGone = false;  // the configuration no longer exists
  };
  void send(const Request& request);

  const Platform& platform_;
  UserDefaultManager& store_;
  SDKLogger& logger_;
  const std::function<OptOuts()> optOuts_;
  const std::stop_token stop_;
  std::mutex mutex_;               // guards the members below
  std::optional<Request> last_;    // with a configuration
  std::optional<Request> newest_;  // to be sent
  bool isSending_ = false;
  ConsentMap lastSent_;  // sent last; used only by the thread that sends
};

}  // namespace quillon
