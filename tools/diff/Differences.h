// What a new configuration changes for users.
#pragma once

#include <string>
#include <vector>

#include "quillon/MainConfiguration.h"

namespace quillon::tools {

struct Difference {
  // It changes what users agree to, or what happens without their answer; else how that looks.
  bool isMaterial;
  std::string text;
};

// Purposes first, then permissions, banners and consent mode.
[[nodiscard]] std::vector<Difference> differences(const MainConfiguration& before, const MainConfiguration& after);

// Everyone or nobody, and why.
[[nodiscard]] std::string whoIsAskedAgain(const MainConfiguration& before, const MainConfiguration& after);

}  // namespace quillon::tools
