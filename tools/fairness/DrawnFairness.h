// Fairness rules that require a rendered banner.
#pragma once

#include <string>

#include "quillon/MainConfiguration.h"
#include "tools/validate/Finding.h"

namespace quillon::tools {

class WarmPreview;

// Draws each banner that is shown at some location, in each of its languages, and compares its answer buttons. The
// document must be the configuration's. Drawing failures are reported as well.
void drawnAnswersAreAlike(const std::string& document, const MainConfiguration& configuration, WarmPreview& screens,
                          const Report& report);

}  // namespace quillon::tools
