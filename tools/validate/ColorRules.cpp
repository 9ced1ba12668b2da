#include <cmath>

#include "tools/validate/Rules.h"
#include "ui/Common/Theme/Contrast.h"

namespace quillon::tools {
namespace {

// Rounded down, so that a ratio just below the limit is not shown as reaching it.
std::string ratio(double contrast) {
  const auto tenths = static_cast<int>(std::floor(contrast * 10));
  return std::to_string(tenths / 10) + '.' + std::to_string(tenths % 10) + ":1";
}

}  // namespace

void textsAreLegible(const MainConfiguration& configuration, const Report& report) {
  if (!configuration.bannerConfig) return;
  for (const auto& [name, banner] : configuration.bannerConfig->categories) {
    if (!banner.customPaletteTheme) continue;
    const CustomColors& colors = *banner.customPaletteTheme;
    const auto path = DocumentPath().at("banner_config").at("categories").at(name).at("palette");
    const auto expectLegible = [&](std::string_view key, const std::string& text, std::string_view on,
                                   const std::string& background) {
      const double found = contrast(colorFromText(text), colorFromText(background));
      if (found >= legible) return;
      report({path.at(key).text(), "has a contrast of " + ratio(found) + " on " + std::string(on) +
                                       "; text is legible from " + ratio(legible) + " on"});
    };
    expectLegible("button_text", colors.buttonText, "button_background", colors.buttonBackground);
    expectLegible("banner_text", colors.bannerText, "banner_background", colors.bannerBackground);
    expectLegible("banner_links", colors.bannerLinks, "banner_background", colors.bannerBackground);
    if (colors.purposeDisclaimerTextColor && colors.purposeDisclaimerBackgroundColor) {
      expectLegible("purpose_disclaimer_text", *colors.purposeDisclaimerTextColor, "purpose_disclaimer_background",
                    *colors.purposeDisclaimerBackgroundColor);
    }
  }
}

}  // namespace quillon::tools
