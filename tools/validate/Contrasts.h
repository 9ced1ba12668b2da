// What is written or drawn on what, in the colours of a banner.
#pragma once

#include <string_view>
#include <vector>

#include "quillon/BannerConfig.h"

namespace quillon::tools {

// Two colours of a palette, by their keys. Valid as long as the banner.
struct ColorPair {
  std::string_view key;
  std::string_view on;
  double contrast;  // from 1 to 21
  double enough;
  std::string_view what;  // is so from `enough` on
};

// None for a banner without a palette.
[[nodiscard]] std::vector<ColorPair> colorPairs(const BannerConfig& banner);

}  // namespace quillon::tools
