// Prints a plan as an application's test.
#pragma once

#include <string>

#include "tests/sim/Plan.h"

namespace quillon::sim {

// A complete source file: a test with quillon::testing that performs the plan's steps, and fails until its expectation
// is added. A test device has one process and runs jobs in FIFO order; steps that it does not support become comments.
[[nodiscard]] std::string asTest(const Plan& plan, const std::string& failure);

}  // namespace quillon::sim
