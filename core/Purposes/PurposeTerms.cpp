#include "core/Purposes/PurposeTerms.h"

#include <algorithm>

#include "core/Persistance/UserDefaults/StoreKeys.h"

namespace quillon {

std::vector<std::int64_t> purposesBoundToTracking(const MainConfiguration& configuration) {
  if (!configuration.isATTEnabled.value_or(false) || !configuration.attConfig) return {};
  return configuration.attConfig->purposeIds.value_or(std::vector<std::int64_t>());
}

PurposeTerms::PurposeTerms(const MainConfiguration& configuration, std::optional<ComplianceType> type)
    : bound_(purposesBoundToTracking(configuration)), isGrantedByDefault_(type && *type != ComplianceType::optIn) {
  std::ranges::sort(bound_);
  if (!configuration.purposes) return;
  for (const Purpose& purpose : *configuration.purposes) {
    if (!purpose.purposeId) continue;
    listed_.push_back(*purpose.purposeId);
    if (purpose.disableOptOut.value_or(false)) essential_.push_back(*purpose.purposeId);
  }
  std::ranges::sort(listed_);
  std::ranges::sort(essential_);
}

bool PurposeTerms::lists(std::int64_t purposeId) const {
  return std::ranges::binary_search(listed_, purposeId);
}

bool PurposeTerms::allowsUndecided(std::int64_t purposeId) const {
  return lists(purposeId) && (isGrantedByDefault_ || isEssential(purposeId));
}

bool PurposeTerms::isEssential(std::int64_t purposeId) const {
  return std::ranges::binary_search(essential_, purposeId);
}

bool PurposeTerms::isBoundToTracking(std::int64_t purposeId) const {
  return std::ranges::binary_search(bound_, purposeId);
}

bool isPurposeAllowed(std::int64_t purposeId, const StoredValues& stored, const PurposeTerms* terms,
                      const AppTracking& tracking, const OptOuts& optOuts) {
  const auto decision = stored.consent(PurposeKey(purposeId));
  const bool isAllowed = decision ? *decision == ConsentStatus::granted
                                  : terms && terms->allowsUndecided(purposeId) && !stored.boolean(key::lostEntries);
  if (!isAllowed || optOuts.include(purposeId, stored)) return false;
  // The store covers the time before there are terms; the terms cover a failed store.
  const bool isBound = stored.isBoundToTracking(purposeId) || (terms && terms->isBoundToTracking(purposeId));
  return !isBound || tracking.authorization() == TrackingAuthorization::authorized;
}

}  // namespace quillon
