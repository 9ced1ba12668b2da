// Maps decisions to the frameworks' strings, by location. Stateless.
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

// Validated options with their parsed vendor list.
struct SignalRules {
  SignalOptions options;
  VendorList vendorList;  // empty without TCF
};

// Returns all mistakes, one text each.
[[nodiscard]] std::expected<SignalRules, std::vector<std::string>> rulesOf(SignalOptions options);

// Whether the GDPR applies; nullopt while the location is unknown.
[[nodiscard]] std::optional<bool> isGdprPlace(const std::optional<std::string>& place);

// nullopt where the GDPR does not apply, and until the user has been shown the purposes.
[[nodiscard]] std::optional<TcString> tcStringOf(const SignalRules& rules, const SignalState& state);
// The section that applies at the location; nullopt if none does.
[[nodiscard]] std::optional<UsString> usStringOf(const SignalRules& rules, const SignalState& state);

// Both sections, where they apply, and the encoded string.
struct EncodedGpp {
  GppString gpp;
  std::string text;
};
[[nodiscard]] EncodedGpp gppOf(const SignalRules& rules, const SignalState& state);

}  // namespace quillon::signals
