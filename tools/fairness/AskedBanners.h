// The banners of a configuration by what the law asks of them.
#pragma once

#include <set>
#include <string>

#include "core/Banner/BannerSelection.h"
#include "tools/document/DocumentPath.h"

namespace quillon::tools {

// A place of each country in which consent has to be given before: the European Economic Area, the United Kingdom and
// Switzerland.
inline constexpr std::string_view europeanCountries[] = {
    "AT", "BE", "BG", "CH", "CY", "CZ", "DE", "DK", "EE", "ES", "FI", "FR", "GB", "GR", "HR", "HU",
    "IE", "IS", "IT", "LI", "LT", "LU", "LV", "MT", "NL", "NO", "PL", "PT", "RO", "SE", "SI", "SK"};

[[nodiscard]] inline ComplianceType typeOf(const BannerConfig& banner) {
  return banner.complianceType.value_or(ComplianceType::noticeOnly);
}

// Calls with each banner, its path, and a country of Europe in which users get it; empty when there is none.
template <class Visit>
void forEachBanner(const MainConfiguration& configuration, Visit visit) {
  if (!configuration.bannerConfig) return;
  for (const auto& [name, banner] : configuration.bannerConfig->categories) {
    std::string_view country;
    for (const auto place : europeanCountries) {
      if (selectBanner(configuration, std::string(place)) != &banner) continue;
      country = place;
      break;
    }
    visit(banner, DocumentPath().at("banner_config").at("categories").at(name), country);
  }
}

}  // namespace quillon::tools
