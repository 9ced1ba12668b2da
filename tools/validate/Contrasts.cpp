#include "tools/validate/Contrasts.h"

#include "ui/Common/Theme/Contrast.h"

namespace quillon::tools {

std::vector<ColorPair> colorPairs(const BannerConfig& banner) {
  std::vector<ColorPair> pairs;
  if (!banner.customPaletteTheme) return pairs;
  const CustomColors& colors = *banner.customPaletteTheme;
  const auto add = [&pairs](std::string_view key, const std::string& color, std::string_view on,
                            const std::string& background, double enough, std::string_view what) {
    pairs.push_back({key, on, contrast(colorFromText(color), colorFromText(background)), enough, what});
  };
  const auto addText = [&add](std::string_view key, const std::string& text, std::string_view on,
                              const std::string& background) {
    add(key, text, on, background, legible, "text is legible");
  };
  addText("button_text", colors.buttonText, "button_background", colors.buttonBackground);
  addText("banner_text", colors.bannerText, "banner_background", colors.bannerBackground);
  addText("banner_links", colors.bannerLinks, "banner_background", colors.bannerBackground);
  if (banner.buttonShape == ButtonShape::outlined) {
    add("button_border", colors.buttonBorder, "banner_background", colors.bannerBackground, visible,
        "an outline is visible");
  }
  if (colors.purposeDisclaimerTextColor && colors.purposeDisclaimerBackgroundColor) {
    addText("purpose_disclaimer_text", *colors.purposeDisclaimerTextColor, "purpose_disclaimer_background",
            *colors.purposeDisclaimerBackgroundColor);
  }
  return pairs;
}

}  // namespace quillon::tools
