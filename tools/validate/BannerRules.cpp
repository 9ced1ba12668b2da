#include "core/Banner/BannerSelection.h"
#include "tools/validate/Rules.h"

namespace quillon::tools {
namespace {

const DocumentPath bannersPath = DocumentPath().at("banner_config");
const DocumentPath categoriesPath = bannersPath.at("categories");

}  // namespace

void bannersAreThere(const MainConfiguration& configuration, const Report& report) {
  if (!configuration.bannerConfig) {
    report({bannersPath.text(), "is missing; there is no banner to show"});
  } else if (configuration.bannerConfig->categories.empty()) {
    report({categoriesPath.text(), "is empty; there is no banner to show"});
  }
}

void complianceTypesAreThere(const MainConfiguration& configuration, const Report& report) {
  if (!configuration.bannerConfig) return;
  for (const auto& [name, banner] : configuration.bannerConfig->categories) {
    if (banner.complianceType) continue;
    report({categoriesPath.at(name).at("compliance_type").text(), "is missing; notice-only applies"});
  }
}

void intervalsAreReadable(const MainConfiguration& configuration, const Report& report) {
  if (!configuration.bannerConfig) return;
  for (const auto& [name, banner] : configuration.bannerConfig->categories) {
    const auto& interval = banner.bannerReappearanceTime;
    if (!interval || bannerIntervalMonths(*interval)) continue;
    report({categoriesPath.at(name).at("banner_reappearance_time").text(),
            inQuotes(*interval) + R"( is not a count, one blank and "month" or "year"; twelve months apply)"});
  }
}

void locationsLeadToBanners(const MainConfiguration& configuration, const Report& report) {
  if (!configuration.bannerConfig) return;
  const auto& banners = *configuration.bannerConfig;
  for (const auto& [place, target] : banners.locations) {
    if (banners.categories.contains(target)) continue;
    const auto name = banners.namesMap.find(target);
    if (name != banners.namesMap.end() && banners.categories.contains(name->second)) continue;
    report({bannersPath.at("locations").at(place).text(), inQuotes(target) + " leads to no category"});
  }
}

void namesLeadToBanners(const MainConfiguration& configuration, const Report& report) {
  if (!configuration.bannerConfig) return;
  for (const auto& [name, category] : configuration.bannerConfig->namesMap) {
    if (configuration.bannerConfig->categories.contains(category)) continue;
    report({bannersPath.at("names_map").at(name).text(), inQuotes(category) + " is no category"});
  }
}

}  // namespace quillon::tools
