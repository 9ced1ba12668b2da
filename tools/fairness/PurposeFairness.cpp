#include <algorithm>
#include <set>

#include "core/Text/LocalizedTexts.h"
#include "tools/fairness/AskedBanners.h"
#include "tools/fairness/FairnessRules.h"

namespace quillon::tools {
namespace {

// Calls with each purpose, its path, and whether users cannot decline it.
template <class Visit>
void forEachPurpose(const MainConfiguration& configuration, Visit visit) {
  if (!configuration.purposes) return;
  for (std::size_t i = 0; i < configuration.purposes->size(); ++i) {
    const Purpose& purpose = (*configuration.purposes)[i];
    visit(purpose, DocumentPath().at("purposes").at(i), purpose.disableOptOut.value_or(false));
  }
}

using Identifiers = std::set<std::int64_t>;

void add(const std::optional<std::vector<std::int64_t>>& list, Identifiers& identifiers) {
  if (list) identifiers.insert(list->begin(), list->end());
}

void add(const DefaultMapping& mapping, Identifiers& identifiers) {
  add(mapping.adStorage, identifiers);
  add(mapping.adUserData, identifiers);
  add(mapping.adPersonalization, identifiers);
  add(mapping.analyticsStorage, identifiers);
}

// Purposes used for advertising, measurement or tracking, according to the rest of the configuration.
Identifiers trackingPurposes(const MainConfiguration& configuration) {
  Identifiers identifiers;
  if (configuration.attConfig) add(configuration.attConfig->purposeIds, identifiers);
  add(configuration.privacySignalPurposes, identifiers);
  if (const auto& consentMode = configuration.gcmConfig) {
    if (consentMode->defaultMapping) add(*consentMode->defaultMapping, identifiers);
    if (consentMode->regionOverrides) {
      for (const auto& [region, mapping] : *consentMode->regionOverrides) add(mapping, identifiers);
    }
  }
  return identifiers;
}

bool isOptInUsed(const MainConfiguration& configuration) {
  bool isUsed = false;
  forEachBanner(configuration, [&isUsed](const BannerConfig& banner, const DocumentPath&, std::string_view) {
    isUsed = isUsed || typeOf(banner) == ComplianceType::optIn;
  });
  return isUsed;
}

}  // namespace

void nothingIsChosenBefore(const MainConfiguration& configuration, const Report& report) {
  if (!isOptInUsed(configuration)) return;
  forEachPurpose(configuration, [&](const Purpose& purpose, const DocumentPath& path, bool isEssential) {
    if (isEssential || purpose.consentStatus != ConsentStatus::granted) return;
    report(path.at("consent_status"), "is \"granted\" before the user answers, under opt-in");
  });
}

void essentialIsEssential(const MainConfiguration& configuration, const Report& report) {
  const auto tracking = trackingPurposes(configuration);
  forEachPurpose(configuration, [&](const Purpose& purpose, const DocumentPath& path, bool isEssential) {
    if (!isEssential || !purpose.purposeId || !tracking.contains(*purpose.purposeId)) return;
    report(path.at("disable_opt_out"), "is true for a purpose of measurement, advertising or tracking");
  });
}

void purposesAreExplained(const MainConfiguration& configuration, const Report& report) {
  forEachPurpose(configuration, [&](const Purpose& purpose, const DocumentPath& path, bool isEssential) {
    if (!purpose.purposeDescription || textIn("en", *purpose.purposeDescription).empty()) {
      report(path.at("purpose_description"), "is missing; nobody can agree to what is not explained");
    }
    if (!isEssential && purpose.hideDetails.value_or(false)) {
      report(path.at("hide_details"), "is true; users do not learn who gets their data");
    }
  });
}

}  // namespace quillon::tools
