#pragma once

#include <span>
#include <string>

#include "receiver/store/DecisionStore.h"

namespace quillon::receiver {

// The statistics as a self-contained HTML page with plots.
[[nodiscard]] std::string statsPage(std::span<const Answers> answers);

}  // namespace quillon::receiver
