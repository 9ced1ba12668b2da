// Operations on styled text.
#pragma once

#include "ui/Common/RichText/RichText.h"

namespace quillon {

// Removes Unicode white space and line ends at both ends.
[[nodiscard]] AttributedText trimmed(AttributedText text);

}  // namespace quillon
