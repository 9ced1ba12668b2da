#include <map>
#include <set>
#include <vector>

#include "tools/validate/Rules.h"

namespace quillon::tools {
namespace {

const DocumentPath purposesPath = DocumentPath().at("purposes");

using Identifiers = std::set<std::int64_t>;

Identifiers identifiersOf(const MainConfiguration& configuration) {
  Identifiers identifiers;
  if (!configuration.purposes) return identifiers;
  for (const auto& purpose : *configuration.purposes) {
    if (purpose.purposeId) identifiers.insert(*purpose.purposeId);
  }
  return identifiers;
}

void expectPurposes(const std::optional<std::vector<std::int64_t>>& list, const Identifiers& known,
                    const DocumentPath& path, const Report& report) {
  if (!list) return;
  for (std::size_t i = 0; i < list->size(); ++i) {
    const auto identifier = (*list)[i];
    if (!known.contains(identifier)) {
      report(path.at(i), "there is no purpose " + std::to_string(identifier));
    }
  }
}

void expectPurposes(const DefaultMapping& mapping, const Identifiers& known, const DocumentPath& path,
                    const Report& report) {
  expectPurposes(mapping.analyticsStorage, known, path.at("analytics_storage"), report);
  expectPurposes(mapping.adStorage, known, path.at("ad_storage"), report);
  expectPurposes(mapping.adUserData, known, path.at("ad_user_data"), report);
  expectPurposes(mapping.adPersonalization, known, path.at("ad_personalization"), report);
}

}  // namespace

void tokenIsThere(const MainConfiguration& configuration, const Report& report) {
  if (configuration.token.value_or("").empty()) {
    report(DocumentPath().at("x-auth-token"), "is missing; no consent can be uploaded");
  }
}

void purposesAreThere(const MainConfiguration& configuration, const Report& report) {
  if (!configuration.purposes || configuration.purposes->empty()) {
    report(purposesPath, "there are none; nothing is asked");
  }
}

void purposesAreComplete(const MainConfiguration& configuration, const Report& report) {
  if (!configuration.purposes) return;
  for (std::size_t i = 0; i < configuration.purposes->size(); ++i) {
    const auto& purpose = (*configuration.purposes)[i];
    const auto path = purposesPath.at(i);
    if (!purpose.purposeId) {
      report(path.at("purpose_id"), "is missing; no decision about this purpose can be kept");
    }
    if (!purpose.purposeName || purpose.purposeName->empty()) {
      report(path.at("purpose_name"), "is missing; the user cannot tell what is asked");
    }
    if (!purpose.disableOptOut) {
      report(path.at("disable_opt_out"), "is missing; selecting all purposes leaves this one out");
    }
  }
}

void purposeIdsAreUnique(const MainConfiguration& configuration, const Report& report) {
  if (!configuration.purposes) return;
  std::map<std::int64_t, std::size_t> first;
  for (std::size_t i = 0; i < configuration.purposes->size(); ++i) {
    const auto& identifier = (*configuration.purposes)[i].purposeId;
    if (!identifier) continue;
    if (const auto [entry, isNew] = first.emplace(*identifier, i); !isNew) {
      report(purposesPath.at(i).at("purpose_id"), purposesPath.at(entry->second).text() + " has the same");
    }
  }
}

void trackingNamesPurposes(const MainConfiguration& configuration, const Report& report) {
  if (!configuration.attConfig) return;
  expectPurposes(configuration.attConfig->purposeIds, identifiersOf(configuration),
                 DocumentPath().at("att_or_gad_config").at("purpose_ids"), report);
}

void privacySignalNamesPurposes(const MainConfiguration& configuration, const Report& report) {
  expectPurposes(configuration.privacySignalPurposes, identifiersOf(configuration),
                 DocumentPath().at("privacy_signal_purposes"), report);
}

void consentModeNamesPurposes(const MainConfiguration& configuration, const Report& report) {
  if (!configuration.gcmConfig) return;
  const auto& consentMode = *configuration.gcmConfig;
  const auto known = identifiersOf(configuration);
  const auto path = DocumentPath().at("gcm_config");
  if (consentMode.defaultMapping) {
    expectPurposes(*consentMode.defaultMapping, known, path.at("default_mapping"), report);
  }
  if (!consentMode.regionOverrides) return;
  for (const auto& [regions, mapping] : *consentMode.regionOverrides) {
    expectPurposes(mapping, known, path.at("region_overrides").at(regions), report);
  }
}

}  // namespace quillon::tools
