// The TCF keys, and their copies under GPP names.
#pragma once

#include <optional>

#include "quillon/SignalKeys.h"
#include "signals/Mapping/SignalRules.h"

namespace quillon::signals {

// "IABTCF_...". Without a string only the CMP, the policy version and, if known, whether the GDPR applies.
void addTcfKeys(SignalKeys& keys, const SignalRules& rules, std::optional<bool> gdprApplies, const TcString* tc,
                std::string text);

// Copies under "IABGPP_TCFEU2_" those that GPP defines.
void addGppCopiesOfTcfKeys(SignalKeys& keys);

}  // namespace quillon::signals
