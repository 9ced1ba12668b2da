// A plan in the words of an application's test.
#pragma once

#include <string>

#include "tests/sim/Plan.h"

namespace quillon::sim {

// A test over quillon::testing that makes the plan's steps, a file of its own. It fails until it is completed with what
// must hold. A device has one process and runs its jobs as they come: what cannot be said there stands in a comment.
[[nodiscard]] std::string asTest(const Plan& plan, const std::string& failure);

}  // namespace quillon::sim
