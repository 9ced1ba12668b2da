#include "core/Purposes/PurposeTerms.h"

#include <algorithm>

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

bool PurposeTerms::isEssential(std::int64_t purposeId) const {
  return std::ranges::binary_search(essential_, purposeId);
}

bool PurposeTerms::isBoundToTracking(std::int64_t purposeId) const {
  return std::ranges::binary_search(bound_, purposeId);
}

bool isPurposeAllowed(const PurposeState& purpose, const AppTracking& tracking, const PrivacySignals* signals) {
  const auto decision = purpose.decision();
  if (decision ? *decision != ConsentStatus::granted : !purpose.isAllowedUndecided()) return false;
  const bool isConcerned = purpose.isCoveredBySignal() && !purpose.isAnswered();
  if (isConcerned && (purpose.isSignalGiven() || (signals && signals->isOn()))) return false;
  return !purpose.isBoundToTracking() || tracking.authorization() == TrackingAuthorization::authorized;
}

}  // namespace quillon
