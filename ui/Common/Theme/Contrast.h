// Whether a text can be told from what it stands on.
#pragma once

#include "quillon/BannerConfig.h"

namespace quillon {

// The ratio of contrast of two colours by their relative luminance, from 1 to 21.
[[nodiscard]] double contrast(const Color& first, const Color& second);

// Text of ordinary size is legible from here on.
inline constexpr double legible = 4.5;
// And a control.
inline constexpr double visible = 3;

// What holds on a screen; more where the user wants high contrast.
struct LeastContrast {
  double text = legible;
  double control = visible;
};
inline constexpr LeastContrast highContrast{.text = 7, .control = 4.5};

}  // namespace quillon
