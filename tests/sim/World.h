// A world that lives through one plan.
#pragma once

#include <optional>
#include <string>

#include "tests/sim/Plan.h"

namespace quillon::sim {

struct Outcome {
  std::optional<std::string> failure;  // the claim that does not hold, and why
  std::size_t steps = 0;               // that were made
  std::string trail;                   // when it was wanted
};

enum class Keep { nothing, trail };

[[nodiscard]] Outcome live(const Plan& plan, Keep keep);

}  // namespace quillon::sim
