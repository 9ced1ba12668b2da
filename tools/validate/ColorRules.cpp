#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "core/Text/Ascii.h"
#include "tools/validate/Rules.h"
#include "ui/Common/Theme/Contrast.h"

namespace quillon::tools {
namespace {

// Rounded down, so that a ratio just below the limit is not shown as reaching it.
std::string ratio(double contrast) {
  const auto tenths = static_cast<int>(std::floor(contrast * 10));
  return std::to_string(tenths / 10) + '.' + std::to_string(tenths % 10) + ":1";
}

bool isColor(std::string_view text) {
  constexpr std::size_t digits = 6;
  if (text.starts_with('#')) text.remove_prefix(1);
  return text.size() == digits && std::ranges::all_of(text, [](char c) { return hexValue(c) >= 0; });
}

std::vector<std::pair<std::string_view, std::string_view>> rolesOf(const CustomColors& colors) {
  std::vector<std::pair<std::string_view, std::string_view>> roles{
      {"button_background", colors.buttonBackground},
      {"button_text", colors.buttonText},
      {"button_border", colors.buttonBorder},
      {"banner_background", colors.bannerBackground},
      {"banner_text", colors.bannerText},
      {"banner_links", colors.bannerLinks},
      {"preference_center_footer_background", colors.preferenceCenterFooterBackground},
      {"preference_center_footer_selector", colors.preferenceCenterFooterSelector}};
  const auto add = [&roles](std::string_view key, const std::optional<std::string>& text) {
    if (text) roles.emplace_back(key, *text);
  };
  add("toggle_primary", colors.togglePrimarycolor);
  add("toggle_secondary", colors.toggleSecondarycolor);
  add("purpose_disclaimer_text", colors.purposeDisclaimerTextColor);
  add("purpose_disclaimer_background", colors.purposeDisclaimerBackgroundColor);
  return roles;
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
    for (const auto& [key, text] : rolesOf(colors)) {
      if (text.empty() || isColor(text)) continue;
      report({path.at(key).text(), "is " + inQuotes(text) + ", which is no colour such as \"#1D3A5F\""});
    }
    expectLegible("button_text", colors.buttonText, "button_background", colors.buttonBackground);
    expectLegible("banner_text", colors.bannerText, "banner_background", colors.bannerBackground);
    expectLegible("banner_links", colors.bannerLinks, "banner_background", colors.bannerBackground);
    if (banner.buttonShape == ButtonShape::outlined) {
      const double found = contrast(colorFromText(colors.buttonBorder), colorFromText(colors.bannerBackground));
      if (found < visible) {
        report({path.at("button_border").text(), "has a contrast of " + ratio(found) +
                                                     " on banner_background; an outline is visible from " +
                                                     ratio(visible) + " on"});
      }
    }
    if (colors.purposeDisclaimerTextColor && colors.purposeDisclaimerBackgroundColor) {
      expectLegible("purpose_disclaimer_text", *colors.purposeDisclaimerTextColor, "purpose_disclaimer_background",
                    *colors.purposeDisclaimerBackgroundColor);
    }
  }
}

}  // namespace quillon::tools
