// Minimizes failing plans.
#pragma once

#include "tests/sim/Plan.h"

namespace quillon::sim {

// The smallest plan found, in at most `lives` runs, that violates the same claim: fewest steps, processes and choices.
[[nodiscard]] Plan shrunk(Plan failing, int lives = 3000);

}  // namespace quillon::sim
