// The content of a screen on which a user decides, for the history.
#pragma once

#include <string>
#include <vector>

#include "platform/ScreenServices.h"

namespace quillon {

// Canonical JSON (RFC 8785), so equal content has equal text: the texts in display order with their roles (keys of the
// configuration or labels), and the purposes that an answer covers, in the user's language and as described in the
// preference centre. Empty without a banner. Any thread.
[[nodiscard]] std::string bannerNotice(const ScreenContent& content, const ScreenServices& sdk);
[[nodiscard]] std::string preferenceCenterNotice(const ScreenContent& content, const std::vector<Purpose>& purposes,
                                                 const ScreenServices& sdk);

}  // namespace quillon
