// Checks one document; shared by the commands and the workbench.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "quillon/MainConfiguration.h"
#include "tools/validate/Finding.h"

namespace quillon::tools {

class WarmPreview;

struct CheckOptions {
  bool lint = false;                        // report problems that users would notice
  bool fairness = false;                    // report violations of fairness rules
  const MainConfiguration* live = nullptr;  // the published configuration; outlives the check
  WarmPreview* screens = nullptr;           // draws the banners for fairness rules that need it
};

struct Checked {
  std::optional<MainConfiguration> configuration;  // nullopt if the SDK rejects the document
  std::vector<Finding> findings;                   // in document order
};

// Without options, reports only what the SDK rejects.
[[nodiscard]] Checked check(const std::string& text, const CheckOptions& options);

}  // namespace quillon::tools
