// All that is to be said about one document, for commands and pages alike.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "quillon/MainConfiguration.h"
#include "tools/validate/Finding.h"

namespace quillon::tools {

class WarmPreview;

struct CheckOptions {
  bool lint = false;                        // what would disappoint a user
  bool fairness = false;                    // what would be unfair to one
  const MainConfiguration* live = nullptr;  // what users have; outlives the check
  WarmPreview* screens = nullptr;           // draws the banners, to measure what would be unfair on them
};

struct Checked {
  std::optional<MainConfiguration> configuration;  // as the SDK reads it; none when it refuses the document
  std::vector<Finding> findings;                   // in the order of the document
};

// Without options, what the SDK refuses.
[[nodiscard]] Checked check(const std::string& text, const CheckOptions& options);

}  // namespace quillon::tools
