#include "ui/Common/Theme/Contrast.h"

#include <algorithm>
#include <cmath>

namespace quillon {
namespace {

double luminance(const Color& color) {
  const auto linear = [](double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

}  // namespace

double contrast(const Color& first, const Color& second) {
  const double one = luminance(first);
  const double other = luminance(second);
  return (std::max(one, other) + 0.05) / (std::min(one, other) + 0.05);
}

}  // namespace quillon
