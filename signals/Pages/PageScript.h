// What pages of the application's web view are told, in the interfaces that the frameworks give pages.
#pragma once

#include <string>

#include "signals/Mapping/SignalRules.h"

namespace quillon::signals {

// A script without its element, safe to stand in one: `__tcfapi` and `__gpp`, for the page and for its frames. Run
// again in the same page, it tells the listeners of what has changed.
[[nodiscard]] std::string pageScript(const SignalRules& rules, const SignalState& state);

}  // namespace quillon::signals
