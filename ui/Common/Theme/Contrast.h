// Contrast requirements for legibility.
#pragma once

#include "quillon/BannerConfig.h"

namespace quillon {

// The contrast ratio of two colours' relative luminances, from 1 to 21.
[[nodiscard]] double contrast(const Color& first, const Color& second);

// The minimum for text of ordinary size.
inline constexpr double legible = 4.5;
// The minimum for controls.
inline constexpr double visible = 3;

// The minimums for a screen; higher if the user prefers high contrast.
struct LeastContrast {
  double text = legible;
  double control = visible;
};
inline constexpr LeastContrast highContrast{.text = 7, .control = 4.5};

}  // namespace quillon
