// The keys of the framework of Europe, and those under which the other platform repeats them.
#pragma once

#include <optional>

#include "quillon/SignalKeys.h"
#include "signals/Mapping/SignalRules.h"

namespace quillon::signals {

// "IABTCF_...". Without a string only who speaks, and whether the law applies as far as that is known.
void addTcfKeys(SignalKeys& keys, const SignalRules& rules, std::optional<bool> gdprApplies, const TcString* tc,
                std::string text);

// The same below "IABGPP_TCFEU2_", as far as the platform names them.
void addRepeatedTcfKeys(SignalKeys& keys);

}  // namespace quillon::signals
