// Changes to the stored values.
#include <algorithm>
#include <iterator>
#include <utility>

#include "core/History/DecisionChain.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Persistance/UserDefaults/StoredValues.h"

namespace quillon {

void StoreTransaction::set(std::string_view key, PropertyValue value) {
  if (key == key::pendingPurposesList) pendingPurposes_.reset();
  changes_.insert_or_assign(std::string(key), std::move(value));
}

void StoreTransaction::remove(std::string_view key) {
  if (key == key::pendingPurposesList) pendingPurposes_.reset();
  changes_.insert_or_assign(std::string(key), std::nullopt);
}

void StoreTransaction::setGivenType(GivenType type) {
  if (type == GivenType::noAction) return;
  if (type == GivenType::implicitly && consentGivenType() == GivenType::explicitly) return;
  set(key::consentGivenType, std::string(rawValue(type)));
}

void StoreTransaction::requestReconsent() {
  set(key::consentGivenType, std::string(rawValue(GivenType::noAction)));
}

void StoreTransaction::append(Decision decision, std::string_view applicationId) {
  decision.configurationVersion = integer(key::configurationVersion, 0);
  decision.complianceType = complianceType();
  // A device's decision holds for every application; a signal's effect ends with it.
  const bool isDevices = decision.cause == DecisionCause::device || decision.cause == DecisionCause::trackingStatus ||
                         decision.cause == DecisionCause::signal;
  decisions_.push_back(std::move(decision));
  if (isDevices || applicationId.empty()) return;
  const auto* known = find<std::vector<std::string>>(key::decidedApplicationsList);
  if (known && std::ranges::find(*known, applicationId) != known->end()) return;
  auto list = known ? *known : std::vector<std::string>();
  list.emplace_back(applicationId);
  set(key::decidedApplicationsList, std::move(list));
}

SuiteUpdate StoreTransaction::take() {
  SuiteUpdate update(std::move(changes_));
  update.marks = std::exchange(marks_, {});
  std::vector<Decision> recorded;
  std::ranges::copy_if(decisions_, std::back_inserter(recorded),
                       [](const Decision& decision) { return decision.cause != DecisionCause::removed; });
  if (recorded.empty()) return update;
  if (auto head = string(key::historyHead)) {
    auto [texts, newHead] = chained(recorded, std::move(*head));
    update.appended = std::move(texts);
    update.changes.insert_or_assign(std::string(key::historyHead), std::move(newHead));
  } else {
    update.appendAfter = [recorded = std::move(recorded),
                          wereEntriesLost = boolean(key::lostEntries)](const JournalPage& newest) {
      auto [texts, newHead] = chained(recorded, chainStart(newest, wereEntriesLost));
      return SuiteUpdate::Appending{std::move(texts), {{std::string(key::historyHead), std::move(newHead)}}};
    };
  }
  return update;
}

void StoreTransaction::addPendingPurpose(std::int64_t purposeId) {
  if (!pendingPurposes_) {
    auto list = pendingPurposes();
    std::unordered_set<std::int64_t> known(list.begin(), list.end());
    set(key::pendingPurposesList, std::move(list));
    pendingPurposes_ = std::move(known);
  }
  if (!pendingPurposes_->insert(purposeId).second) return;
  std::get<std::vector<std::int64_t>>(*changes_.find(key::pendingPurposesList)->second).push_back(purposeId);
}

void StoreTransaction::include(std::string_view key, std::int64_t number, bool isIn) {
  const auto* present = find<std::vector<std::int64_t>>(key);
  if ((present && std::ranges::binary_search(*present, number)) == isIn) return;
  if (!present || !changes_.contains(key)) set(key, present ? *present : std::vector<std::int64_t>());
  auto& list = std::get<std::vector<std::int64_t>>(*changes_.find(key)->second);
  const auto place = std::ranges::lower_bound(list, number);
  if (isIn) {
    list.insert(place, number);
  } else {
    list.erase(place);
  }
}

void StoreTransaction::decide(std::int64_t purposeId, ConsentStatus status, DecisionCause cause) {
  include(key::answeredPurposesList, purposeId, cause == DecisionCause::user);
  include(key::signalPurposesList, purposeId, cause == DecisionCause::signal);
  set(PurposeKey(purposeId), std::string(rawValue(status)));
}

void StoreTransaction::confirm(std::int64_t purposeId) {
  include(key::answeredPurposesList, purposeId, true);
}

void StoreTransaction::endSignal(std::int64_t purposeId, std::int64_t time) {
  const PurposeKey purpose(purposeId);
  decisions_.push_back(
      {.time = time, .purposeId = purposeId, .from = consent(purpose), .cause = DecisionCause::removed});
  include(key::signalPurposesList, purposeId, false);
  remove(purpose);
  auto pending = pendingPurposes();
  if (std::erase(pending, purposeId) != 0) set(key::pendingPurposesList, std::move(pending));
}

void StoreTransaction::addPendingPermission(const std::string& permission) {
  auto list = pendingPermissions();
  if (std::ranges::find(list, permission) != list.end()) return;
  list.push_back(permission);
  set(key::pendingPermissionsList, std::move(list));
}

}  // namespace quillon
