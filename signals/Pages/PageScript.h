// Scripts that give pages of the in-app web view the frameworks' APIs.
#pragma once

#include <string>

#include "signals/Mapping/SignalRules.h"

namespace quillon::signals {

// A script without its <script> element, safely embeddable in one: `__tcfapi` and `__gpp`, for the page and its frames.
// Running it again in the same page notifies listeners of changes.
[[nodiscard]] std::string pageScript(const SignalRules& rules, const SignalState& state);

}  // namespace quillon::signals
