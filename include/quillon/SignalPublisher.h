/// @file
/// Publishes the keys of advertising libraries after every decision.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "quillon/SignalKeys.h"
#include "quillon/SignalOptions.h"

namespace quillon {

class ConsentSDK;
class KeyValueSuite;

/// The key-value defaults from which an application's libraries read their keys. Implemented by the application.
class SignalDefaults {
 public:
  virtual ~SignalDefaults() = default;

  /// Replaces all keys for which isSignalKey() is true by @p keys, in one transaction: readers see all old keys or all
  /// new ones. Returns false, changing nothing, on failure; an exception counts as false. Called from any thread, one
  /// call at a time. Must not use the SDK.
  virtual bool replace(const SignalKeys& keys) = 0;
};

/// Defaults in a suite of a platform's store ("quillon/platform/KeyValueSuite.h").
[[nodiscard]] std::shared_ptr<SignalDefaults> signalDefaultsIn(std::shared_ptr<KeyValueSuite> suite);

/// Writes the keys that apply at the user's location, and no others: on construction, and after each decision, removal,
/// re-consent, privacy signal, new configuration or change of location, by this process or another of the application.
/// Fails closed: until a configuration is available, the keys of an earlier run are removed. Also adds the interfaces
/// `__tcfapi` and `__gpp` to ConsentSDK::consentScript().
///
/// Construct it after ConsentSDK::setup(), with ConsentSDKOptions::locationCode if the configuration does not depend on
/// the location. Thread-safe. Errors in the options are logged; no keys are written then.
///
/// @code
/// std::shared_ptr<quillon::SignalDefaults> defaults;  // the application's own
/// quillon::SignalOptions signals;
/// signals.cmpId = 12;  // that the IAB has given to the application's consent management
/// quillon::ConsentSDK::shared().setup(options);
/// const quillon::SignalPublisher publisher(quillon::ConsentSDK::shared(), signals, defaults);
/// @endcode
class SignalPublisher {
 public:
  /// The SDK may be destroyed first; nothing is written afterwards.
  SignalPublisher(ConsentSDK& sdk, SignalOptions options, std::shared_ptr<SignalDefaults> defaults);
  /// Stops publishing, without waiting for a running SignalDefaults::replace(). The keys stay.
  ~SignalPublisher();
  SignalPublisher(const SignalPublisher&) = delete;
  SignalPublisher& operator=(const SignalPublisher&) = delete;

  /// Errors in the options, one line each.
  [[nodiscard]] const std::vector<std::string>& mistakes() const noexcept;

 private:
  class Publication;
  std::shared_ptr<Publication> publication_;
};

}  // namespace quillon
