// Operations on styled text.
#pragma once

#include "ui/Common/RichText/RichText.h"

namespace quillon {

// Without the white space and line ends of Unicode at both ends. Text of nothing else becomes empty.
[[nodiscard]] AttributedText trimmed(AttributedText text);

}  // namespace quillon
