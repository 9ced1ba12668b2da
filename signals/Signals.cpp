#include "quillon/Signals.h"

#include <utility>

#include "signals/Keys/Keys.h"
#include "signals/Pages/PageScript.h"

namespace quillon {

Signals::Signals(SignalOptions options) {
  auto rules = signals::rulesOf(std::move(options));
  if (rules) {
    rules_ = std::make_shared<const signals::SignalRules>(std::move(*rules));
  } else {
    mistakes_ = std::move(rules.error());
  }
}

SignalKeys Signals::keys(const SignalState& state) const {
  return rules_ ? signals::keysOf(*rules_, state) : SignalKeys();
}

std::string Signals::pageScript(const SignalState& state) const {
  return rules_ ? signals::pageScript(*rules_, state) : std::string();
}

bool isSignalKey(std::string_view key) noexcept {
  return key.starts_with("IABTCF_") || key.starts_with("IABGPP_");
}

}  // namespace quillon
