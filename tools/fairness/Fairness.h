// The fairness rules that a document can violate; docs/fairness.md has their sources.
#pragma once

#include <span>

#include "tools/validate/Lint.h"

namespace quillon::tools {

[[nodiscard]] std::span<const Rule> fairnessRules();

}  // namespace quillon::tools
