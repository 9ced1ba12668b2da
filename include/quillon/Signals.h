/// @file
/// The advertising signals (IAB TCF and GPP) computed from a user's decisions.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "quillon/SignalKeys.h"
#include "quillon/SignalOptions.h"
#include "quillon/SignalState.h"

namespace quillon {

namespace signals {
struct SignalRules;
}

/// Computes the IABTCF_ and IABGPP_ keys of an application.
///
/// Stateless: the same SignalState always gives the same keys. Fails closed: a purpose missing from the configuration,
/// a vendor missing from the list and a default decision give no consent. Thread-safe. Never throws.
///
/// @code
/// quillon::SignalOptions options;
/// options.cmpId = 12;  // that the IAB has given to the application's consent management
/// const quillon::Signals signals(options);
/// for (const auto& mistake : signals.mistakes()) std::cerr << mistake << "\n";
/// const quillon::SignalKeys keys = signals.keys(quillon::SignalState());
/// @endcode
class Signals {
 public:
  /// Validates the options, including the vendor list: at most 32 MiB, about 2 ms for 2,000 vendors.
  explicit Signals(SignalOptions options);

  /// Errors in the options, one line each, for the log; a missing registration number is one. With any error there are
  /// no keys.
  [[nodiscard]] const std::vector<std::string>& mistakes() const noexcept { return mistakes_; }

  /// The keys that apply at the location of @p state, and no others. They belong together: replace every key for which
  /// isSignalKey() is true in one step, so that readers never see a mixture.
  [[nodiscard]] SignalKeys keys(const SignalState& state) const;

  /// A script with the interfaces `__tcfapi` and `__gpp` for pages in the application's own web view and their frames.
  /// Run it before the page's own scripts, and again in the same page after a change, which it reports to the page's
  /// listeners. Safe inside a script element. Empty when there are errors in the options.
  [[nodiscard]] std::string pageScript(const SignalState& state) const;

 private:
  std::vector<std::string> mistakes_;
  std::shared_ptr<const signals::SignalRules> rules_;  // null when there are mistakes
};

/// Whether keys() may produce this key.
[[nodiscard]] bool isSignalKey(std::string_view key) noexcept;

}  // namespace quillon
