// Selects banners by the legal regime of their locations.
#pragma once

#include <set>
#include <string>

#include "core/Banner/BannerSelection.h"
#include "tools/document/DocumentPath.h"

namespace quillon::tools {

// The countries that require prior consent: the European Economic Area, the United Kingdom and Switzerland.
inline constexpr std::string_view europeanCountries[] = {
    "AT", "BE", "BG", "CH", "CY", "CZ", "DE", "DK", "EE", "ES", "FI", "FR", "GB", "GR", "HR", "HU",
    "IE", "IS", "IT", "LI", "LT", "LU", "LV", "MT", "NL", "NO", "PL", "PT", "RO", "SE", "SI", "SK"};

[[nodiscard]] inline ComplianceType typeOf(const BannerConfig& banner) {
  return banner.complianceType.value_or(ComplianceType::noticeOnly);
}

// Calls with each banner, its path, and a European country whose users get it; empty if there is none.
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
