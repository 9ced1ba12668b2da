// The pairs of foreground and background colours in a banner's palette.
#pragma once

#include <string_view>
#include <vector>

#include "quillon/BannerConfig.h"

namespace quillon::tools {

// Two colours of a palette, by key. Valid as long as the banner.
struct ColorPair {
  std::string_view key;
  std::string_view on;
  double contrast;  // from 1 to 21
  double enough;
  std::string_view what;  // the quality that is reached from `enough` on
};

// Empty for a banner without a palette.
[[nodiscard]] std::vector<ColorPair> colorPairs(const BannerConfig& banner);

}  // namespace quillon::tools
