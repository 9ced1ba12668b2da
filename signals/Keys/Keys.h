// The keys that libraries in an application read.
#pragma once

#include "quillon/SignalKeys.h"
#include "signals/Mapping/SignalRules.h"

namespace quillon::signals {

// All keys that apply at the place of the state, and no others. Of one state, so that they belong together.
[[nodiscard]] SignalKeys keysOf(const SignalRules& rules, const SignalState& state);

}  // namespace quillon::signals
