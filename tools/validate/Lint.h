// What is sound in a configuration and would disappoint a user all the same.
#pragma once

#include <functional>
#include <string>

#include "quillon/MainConfiguration.h"

namespace quillon::tools {

// Free of control characters, both bounded in length.
struct Finding {
  std::string path;  // as decode() writes it
  std::string text;
};

using Report = std::function<void(const Finding&)>;

// Reports one finding after the other, rule by rule. The time and the number of findings grow with the configuration
// at most.
void lint(const MainConfiguration& configuration, const Report& report);

}  // namespace quillon::tools
