// Selects the language of a localized text.
#pragma once

#include <string>
#include <string_view>

#include "quillon/BannerConfig.h"

namespace quillon {

// The text in the language, else in English, else the first one; empty when there is none. Empty entries are skipped.
[[nodiscard]] std::string textIn(std::string_view language, const LocalizedText& text);

}  // namespace quillon
