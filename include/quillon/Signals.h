/// @file
/// The strings of the advertising trade that follow from a user's decisions.
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

/// What libraries of the advertising trade are told: the IABTCF_ and IABGPP_ keys of an application.
///
/// It remembers nothing of a user, so the same state always makes the same keys. Every doubt is a refusal: a purpose
/// that the configuration lost, a vendor that left the list and a decision that was only a default give no consent.
/// Thread-safe. Never throws.
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
  /// Checks the options, the vendor list included: at most 32 MiB, and about 2 ms for 2,000 vendors.
  explicit Signals(SignalOptions options);

  /// What is wrong with the options, one line each, for the log; then there are no keys. Among it that there is no
  /// number of a registered consent platform.
  [[nodiscard]] const std::vector<std::string>& mistakes() const noexcept { return mistakes_; }

  /// The keys that apply at the place of @p state, and no others: all of them belong together. Whoever writes them
  /// replaces every key that isSignalKey() knows, in one step, so that nobody sees half of them.
  [[nodiscard]] SignalKeys keys(const SignalState& state) const;

  /// What pages in the application's own web view are told: `__tcfapi` and `__gpp`, for the page and its frames. Run it
  /// before the page's own scripts, and again in the same page after a change, of which it tells the page's listeners.
  /// It is safe inside a script element. Empty when there are mistakes.
  [[nodiscard]] std::string pageScript(const SignalState& state) const;

 private:
  std::vector<std::string> mistakes_;
  std::shared_ptr<const signals::SignalRules> rules_;  // null when there are mistakes
};

/// Whether a key is of those that keys() makes.
[[nodiscard]] bool isSignalKey(std::string_view key) noexcept;

}  // namespace quillon
