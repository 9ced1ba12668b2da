// The shortest way to a failure.
#pragma once

#include "tests/sim/Plan.h"

namespace quillon::sim {

// A plan that fails on the same claim with as few steps, processes and choices as could be found in so many lives.
[[nodiscard]] Plan shrunk(Plan failing, int lives = 3000);

}  // namespace quillon::sim
