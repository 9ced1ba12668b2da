// What the decisions mean in the frameworks of a place. Nothing here remembers anything.
#pragma once

#include <expected>
#include <optional>
#include <string>
#include <vector>

#include "quillon/SignalOptions.h"
#include "quillon/SignalState.h"
#include "signals/Gpp/GppString.h"
#include "signals/VendorList/VendorList.h"

namespace quillon::signals {

// Options that have been checked, with the vendor list that they bring.
struct SignalRules {
  SignalOptions options;
  VendorList vendorList;  // empty without the framework of Europe
};

// Every mistake is one line.
[[nodiscard]] std::expected<SignalRules, std::vector<std::string>> rulesOf(SignalOptions options);

// Whether the law of Europe applies; nothing while the place is not known.
[[nodiscard]] std::optional<bool> isGdprPlace(const std::optional<std::string>& place);

// Only where that law applies, and after the user has seen what is asked.
[[nodiscard]] std::optional<TcString> tcStringOf(const SignalRules& rules, const SignalState& state);
// The section that applies at the place; nothing when none does.
[[nodiscard]] std::optional<UsString> usStringOf(const SignalRules& rules, const SignalState& state);

// Both, as far as they apply, and the text that they make.
struct EncodedGpp {
  GppString gpp;
  std::string text;
};
[[nodiscard]] EncodedGpp gppOf(const SignalRules& rules, const SignalState& state);

}  // namespace quillon::signals
