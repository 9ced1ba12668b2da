/// @file
/// Keeps what libraries of the advertising trade read as the user's decisions are.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "quillon/SignalKeys.h"
#include "quillon/SignalOptions.h"

namespace quillon {

class ConsentSDK;
class KeyValueSuite;

/// Where the libraries in an application look for their keys: its defaults, which it makes writable for the SDK.
class SignalDefaults {
 public:
  virtual ~SignalDefaults() = default;

  /// Makes these the only keys there that isSignalKey() knows, in one transaction: a reader sees all of the former ones
  /// or all of these. False when it could not; then nothing has changed. Called from any thread, one call at a time;
  /// what it throws counts as false. Must not use the SDK.
  virtual bool replace(const SignalKeys& keys) = 0;
};

/// Defaults that are a suite of a platform's store ("quillon/platform/KeyValueSuite.h").
[[nodiscard]] std::shared_ptr<SignalDefaults> signalDefaultsIn(std::shared_ptr<KeyValueSuite> suite);

/// Writes the keys of the place where the user is, and no others: at once when it is made, and again after each
/// decision, removal, re-consent, privacy signal, new configuration or change of place, of this process or another of
/// the application. What is not known yet is not granted: before a configuration is at hand the keys of an earlier run
/// are gone. It also gives the pages that run ConsentSDK::consentScript() the interfaces `__tcfapi` and `__gpp`.
///
/// Make it after ConsentSDK::setup(), with ConsentSDKOptions::locationCode where the configuration does not ask for the
/// place. Thread-safe. With mistakes in the options, which are logged, there are no keys.
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
  /// The SDK may be destroyed before it: then nothing is written any more.
  SignalPublisher(ConsentSDK& sdk, SignalOptions options, std::shared_ptr<SignalDefaults> defaults);
  /// Ends it; a call of the defaults that is under way may still go on. The keys stay.
  ~SignalPublisher();
  SignalPublisher(const SignalPublisher&) = delete;
  SignalPublisher& operator=(const SignalPublisher&) = delete;

  /// What is wrong with the options, one line each.
  [[nodiscard]] const std::vector<std::string>& mistakes() const noexcept;

 private:
  class Publication;
  std::shared_ptr<Publication> publication_;
};

}  // namespace quillon
