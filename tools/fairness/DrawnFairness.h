// What can only be told of a banner that is drawn.
#pragma once

#include <string>

#include "quillon/MainConfiguration.h"
#include "tools/validate/Finding.h"

namespace quillon::tools {

class WarmPreview;

// Draws each banner that asks users of some place, in each of its languages, and compares the buttons by which it is
// answered. The document is the configuration's. What cannot be drawn is reported, too.
void drawnAnswersAreAlike(const std::string& document, const MainConfiguration& configuration, WarmPreview& screens,
                          const Report& report);

}  // namespace quillon::tools
