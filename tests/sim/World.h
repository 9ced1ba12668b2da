// Runs a plan in a new world.
#pragma once

#include <optional>
#include <string>

#include "tests/sim/Plan.h"

namespace quillon::sim {

struct Outcome {
  std::optional<std::string> failure;  // the violated claim, and the reason
  std::size_t steps = 0;               // executed steps
  std::string trail;                   // if requested
};

enum class Keep { nothing, trail };

[[nodiscard]] Outcome live(const Plan& plan, Keep keep);

}  // namespace quillon::sim
