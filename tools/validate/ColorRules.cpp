#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "core/Text/Ascii.h"
#include "tools/validate/Contrasts.h"
#include "tools/validate/Rules.h"

namespace quillon::tools {
namespace {

// Rounded down, so that a contrast just below the limit is not shown as meeting it.
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

// Calls with each palette's banner and path.
template <class Visit>
void forEachPalette(const MainConfiguration& configuration, Visit visit) {
  if (!configuration.bannerConfig) return;
  for (const auto& [name, banner] : configuration.bannerConfig->categories) {
    if (!banner.customPaletteTheme) continue;
    visit(banner, DocumentPath().at("banner_config").at("categories").at(name).at("palette"));
  }
}

}  // namespace

void colorsAreColors(const MainConfiguration& configuration, const Report& report) {
  forEachPalette(configuration, [&report](const BannerConfig& banner, const DocumentPath& path) {
    for (const auto& [key, text] : rolesOf(*banner.customPaletteTheme)) {
      if (text.empty() || isColor(text)) continue;
      report(path.at(key), "is " + inQuotes(text) + ", which is no colour such as \"#1D3A5F\"");
    }
  });
}

void textsAreLegible(const MainConfiguration& configuration, const Report& report) {
  forEachPalette(configuration, [&report](const BannerConfig& banner, const DocumentPath& path) {
    for (const ColorPair& pair : colorPairs(banner)) {
      if (pair.contrast >= pair.enough) continue;
      report(path.at(pair.key), "has a contrast of " + ratio(pair.contrast) + " on " + std::string(pair.on) + "; " +
                                    std::string(pair.what) + " from " + ratio(pair.enough) + " on");
    }
  });
}

}  // namespace quillon::tools
