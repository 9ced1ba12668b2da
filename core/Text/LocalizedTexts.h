// The text that a user is shown of one that comes in several languages.
#pragma once

#include <string>
#include <string_view>

#include "quillon/BannerConfig.h"

namespace quillon {

// In the language, else in English, else the first there is; empty when there is none. An entry that is empty counts as
// none.
[[nodiscard]] std::string textIn(std::string_view language, const LocalizedText& text);

}  // namespace quillon
