#include <algorithm>

#include "core/Banner/BannerSelection.h"
#include "core/Text/LocalizedTexts.h"
#include "tools/validate/Languages.h"
#include "tools/validate/Rules.h"
#include "ui/ConsentBanner/ButtonsByComplianceType.h"

namespace quillon::tools {
namespace {

const DocumentPath bannersPath = DocumentPath().at("banner_config");
const DocumentPath categoriesPath = bannersPath.at("categories");

bool hasText(const std::optional<LocalizedText>& text) {
  return text && !textIn("en", *text).empty();
}

}  // namespace

void bannersAreThere(const MainConfiguration& configuration, const Report& report) {
  if (!configuration.bannerConfig) {
    report(bannersPath, "is missing; there is no banner to show");
  } else if (configuration.bannerConfig->categories.empty()) {
    report(categoriesPath, "is empty; there is no banner to show");
  }
}

void complianceTypesAreThere(const MainConfiguration& configuration, const Report& report) {
  if (!configuration.bannerConfig) return;
  for (const auto& [name, banner] : configuration.bannerConfig->categories) {
    if (banner.complianceType) continue;
    report(categoriesPath.at(name).at("compliance_type"), "is missing; notice-only applies");
  }
}

void versionIsThere(const MainConfiguration& configuration, const Report& report) {
  if (configuration.version) return;
  report(DocumentPath().at("version"), "is missing; no later publication can ask users again");
}

void elsewhereHasABanner(const MainConfiguration& configuration, const Report& report) {
  if (!configuration.bannerConfig || configuration.bannerConfig->categories.empty()) return;
  if (configuration.bannerConfig->locations.contains("default")) return;
  const auto& categories = configuration.bannerConfig->categories;
  const auto& name = categories.contains("default") ? "default" : categories.begin()->first;
  report(bannersPath.at("locations").at("default"), "is missing; users elsewhere get category " + inQuotes(name));
}

void bannersSayWhatTheyAsk(const MainConfiguration& configuration, const Report& report) {
  if (!configuration.bannerConfig) return;
  for (const auto& [name, banner] : configuration.bannerConfig->categories) {
    if (hasText(banner.bannerText)) continue;
    report(categoriesPath.at(name).at("banner_text"), "is missing; the banner does not say what it is about");
  }
}

void bannersHaveTheirButtons(const MainConfiguration& configuration, const Report& report) {
  if (!configuration.bannerConfig) return;
  const auto languages = languagesOf(configuration);
  for (const auto& [name, banner] : configuration.bannerConfig->categories) {
    const auto path = categoriesPath.at(name);
    if (banner.complianceType == ComplianceType::optIn && banner.hideAcceptButton.value_or(false)) {
      report(path.at("hide_accept_toggle"), "is true; opt-in needs a button by which users agree");
    }
    const auto answers = buttonsByComplianceType(banner).answers;
    const auto expectText = [&](BannerAction action, std::string_view key, const std::optional<LocalizedText>& text) {
      if (std::ranges::find(answers, action) == answers.end() || hasText(text)) return;
      const auto hasLabel = [&](std::string_view language) {
        if (!configuration.translations) return false;
        const auto labels = configuration.translations->find(language);
        return labels != configuration.translations->end() && labels->second && labels->second->contains(key);
      };
      if (!languages.empty() && std::ranges::all_of(languages, hasLabel)) return;
      report(path.at(key), "is missing; the button has its built-in label where i18n has none");
    };
    expectText(BannerAction::accept, "accept", banner.accept);
    expectText(BannerAction::reject, "reject", banner.reject);
  }
}

void intervalsAreReadable(const MainConfiguration& configuration, const Report& report) {
  if (!configuration.bannerConfig) return;
  for (const auto& [name, banner] : configuration.bannerConfig->categories) {
    const auto& interval = banner.bannerReappearanceTime;
    if (!interval || bannerIntervalMonths(*interval)) continue;
    report(categoriesPath.at(name).at("banner_reappearance_time"),
           inQuotes(*interval) + R"( is not a count, one blank and "month" or "year"; twelve months apply)");
  }
}

void locationsLeadToBanners(const MainConfiguration& configuration, const Report& report) {
  if (!configuration.bannerConfig) return;
  const auto& banners = *configuration.bannerConfig;
  for (const auto& [place, target] : banners.locations) {
    if (banners.categories.contains(target)) continue;
    const auto name = banners.namesMap.find(target);
    if (name != banners.namesMap.end() && banners.categories.contains(name->second)) continue;
    report(bannersPath.at("locations").at(place), inQuotes(target) + " leads to no category");
  }
}

void namesLeadToBanners(const MainConfiguration& configuration, const Report& report) {
  if (!configuration.bannerConfig) return;
  for (const auto& [name, category] : configuration.bannerConfig->namesMap) {
    if (configuration.bannerConfig->categories.contains(category)) continue;
    report(bannersPath.at("names_map").at(name), inQuotes(category) + " is no category");
  }
}

}  // namespace quillon::tools
