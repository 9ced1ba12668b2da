// What a screen shows to somebody who decides on it, as the history keeps it.
#pragma once

#include <string>
#include <vector>

#include "platform/ScreenServices.h"

namespace quillon {

// A JSON object in canonical form (RFC 8785), the same for everybody who is shown the same: the texts in the order
// shown, each with its role (its key in the configuration or among the labels), and the purposes that an answer covers,
// in the user's language and as the preference centre describes them. Empty without a banner. Any thread.
[[nodiscard]] std::string bannerNotice(const ScreenContent& content, const ScreenServices& sdk);
[[nodiscard]] std::string preferenceCenterNotice(const ScreenContent& content, const std::vector<Purpose>& purposes,
                                                 const ScreenServices& sdk);

}  // namespace quillon
