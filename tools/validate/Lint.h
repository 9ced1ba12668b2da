// Warnings about valid configurations.
#pragma once

#include <functional>
#include <string>

#include "quillon/MainConfiguration.h"

namespace quillon::tools {

// Both texts are free of control characters and bounded in length.
struct Finding {
  std::string path;  // in decode()'s notation
  std::string text;
};

using Report = std::function<void(const Finding&)>;

// Reports the findings, rule by rule. Time and number of findings are linear in the size of the configuration.
void lint(const MainConfiguration& configuration, const Report& report);

}  // namespace quillon::tools
