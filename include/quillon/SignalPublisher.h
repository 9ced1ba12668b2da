/// @file
/// Keeps the keys of advertising libraries in step with the user's decisions.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "quillon/SignalKeys.h"
#include "quillon/SignalOptions.h"

namespace quillon {

class ConsentSDK;
class KeyValueSuite;

/// The defaults in which an application's libraries look for their keys, made writable for the SDK.
class SignalDefaults {
 public:
  virtual ~SignalDefaults() = default;

  /// Replaces all keys for which isSignalKey() is true by these, in one transaction: readers see all old keys or all
  /// new ones. False, changing nothing, when it fails. Called from any thread, one call at a time; an exception counts
  /// as false. Must not use the SDK.
  virtual bool replace(const SignalKeys& keys) = 0;
};

/// Defaults in a suite of a platform's store ("quillon/platform/KeyValueSuite.h").
[[nodiscard]] std::shared_ptr<SignalDefaults> signalDefaultsIn(std::shared_ptr<KeyValueSuite> suite);

/// Writes the keys for the user's location, and no others: at once on construction, and after each decision, removal,
/// re-consent, privacy signal, new configuration or change of location, by this process or another of the application.
/// What is unknown is not granted: before a configuration is available the keys of an earlier run are removed. It also
/// adds the interfaces `__tcfapi` and `__gpp` to ConsentSDK::consentScript().
///
/// Construct it after ConsentSDK::setup(), with ConsentSDKOptions::locationCode if the configuration does not depend on
/// the location. Thread-safe. Errors in the options are logged, and there are no keys then.
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
  /// Stops publishing; a running call of the defaults may still end later. The keys stay.
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
