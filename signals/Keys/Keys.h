// The keys that advertising libraries read.
#pragma once

#include "quillon/SignalKeys.h"
#include "signals/Mapping/SignalRules.h"

namespace quillon::signals {

// Exactly the keys that apply at the state's location. They come from one state, so they are consistent.
[[nodiscard]] SignalKeys keysOf(const SignalRules& rules, const SignalState& state);

}  // namespace quillon::signals
