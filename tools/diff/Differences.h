// The changes between two configurations, as they affect users.
#pragma once

#include <string>
#include <vector>

#include "quillon/MainConfiguration.h"

namespace quillon::tools {

struct Difference {
  // Whether it changes what users agree to, or what happens without their answer; otherwise only the appearance.
  bool isMaterial;
  std::string text;
};

// Purposes first, then permissions, banners and consent mode.
[[nodiscard]] std::vector<Difference> differences(const MainConfiguration& before, const MainConfiguration& after);

// Who is asked again (everyone or nobody), and why.
[[nodiscard]] std::string whoIsAskedAgain(const MainConfiguration& before, const MainConfiguration& after);

}  // namespace quillon::tools
