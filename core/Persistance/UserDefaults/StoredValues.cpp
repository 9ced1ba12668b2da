#include "core/Persistance/UserDefaults/StoredValues.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <utility>

#include "core/History/DecisionChain.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"

namespace quillon {

namespace {

// The subject of a store key; nullopt for an SDK key or any other.
std::optional<DecisionSubject> subjectUnder(std::string_view name) {
  if (!key::isPurpose(name)) {
    if (key::isReserved(name)) return std::nullopt;
    return DecisionSubject{.permission = VantariKey(std::string(name))};
  }
  std::int64_t purpose = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), purpose);
  if (error != std::errc() || end != name.data() + name.size()) return std::nullopt;
  return DecisionSubject{.purposeId = purpose};
}

}  // namespace

PurposeKey::PurposeKey(std::int64_t purposeId) noexcept
    : length_(static_cast<std::size_t>(std::to_chars(text_, text_ + sizeof text_, purposeId).ptr - text_)) {}

template <class T>
const T* StoredValues::find(std::string_view key) const {
  if (changes_) {
    if (const auto changed = changes_->find(key); changed != changes_->end()) {
      return changed->second ? std::get_if<T>(&*changed->second) : nullptr;
    }
  }
  const auto entry = entries_.find(key);
  return entry == entries_.end() ? nullptr : std::get_if<T>(&entry->second);
}

std::optional<std::string> StoredValues::string(std::string_view key) const {
  const auto* text = find<std::string>(key);
  return text ? std::optional(*text) : std::nullopt;
}

std::string StoredValues::string(std::string_view key, std::string_view fallback) const {
  const auto* text = find<std::string>(key);
  return text ? *text : std::string(fallback);
}

bool StoredValues::boolean(std::string_view key) const {
  const auto* flag = find<bool>(key);
  return flag && *flag;
}

std::int64_t StoredValues::integer(std::string_view key, std::int64_t fallback) const {
  const auto* number = find<std::int64_t>(key);
  return number ? *number : fallback;
}

std::optional<PropertyDate> StoredValues::date(std::string_view key) const {
  const auto* time = find<PropertyDate>(key);
  return time ? std::optional(*time) : std::nullopt;
}

std::vector<std::int64_t> StoredValues::numbers(std::string_view key) const {
  const auto* list = find<std::vector<std::int64_t>>(key);
  return list ? *list : std::vector<std::int64_t>();
}

std::optional<ConsentStatus> StoredValues::consent(std::string_view key) const {
  const auto* text = find<std::string>(key);
  return text ? fromRawValue<ConsentStatus>(*text) : std::nullopt;
}

std::map<DecisionSubject, ConsentStatus> StoredValues::consents() const {
  std::map<DecisionSubject, ConsentStatus> consents;
  for (const auto& [name, value] : entries_) {
    const auto* text = std::get_if<std::string>(&value);
    const auto status = text ? fromRawValue<ConsentStatus>(*text) : std::nullopt;
    if (!status) continue;
    if (auto subject = subjectUnder(name)) consents.emplace(std::move(*subject), *status);
  }
  return consents;
}

ComplianceType StoredValues::complianceType() const {
  const auto* text = find<std::string>(key::currentComplianceType);
  return (text ? fromRawValue<ComplianceType>(*text) : std::nullopt).value_or(ComplianceType::noticeOnly);
}

ConsentStatus StoredValues::complianceDefault() const {
  const bool asks = complianceType() == ComplianceType::optIn || boolean(key::lostEntries);
  return asks ? ConsentStatus::declined : ConsentStatus::granted;
}

GivenType StoredValues::consentGivenType() const {
  const auto* text = find<std::string>(key::consentGivenType);
  return (text ? fromRawValue<GivenType>(*text) : std::nullopt).value_or(GivenType::noAction);
}

bool StoredValues::isBoundToTracking(std::int64_t purposeId) const {
  const auto* list = find<std::vector<std::int64_t>>(key::trackingPurposesList);
  return list && std::ranges::find(*list, purposeId) != list->end();
}

// This version writes sorted lists; in others some purposes may not be found.
bool StoredValues::isAnswered(std::int64_t purposeId) const {
  const auto* list = find<std::vector<std::int64_t>>(key::answeredPurposesList);
  return list && std::ranges::binary_search(*list, purposeId);
}

bool StoredValues::isDecidedBySignal(std::int64_t purposeId) const {
  const auto* list = find<std::vector<std::int64_t>>(key::signalPurposesList);
  return list && std::ranges::binary_search(*list, purposeId);
}

std::vector<std::int64_t> StoredValues::decidedBySignal() const {
  return numbers(key::signalPurposesList);
}

bool StoredValues::isDecidedOnlyBy(std::string_view applicationId) const {
  const auto* list = find<std::vector<std::string>>(key::decidedApplicationsList);
  return !list || std::ranges::all_of(*list, [&](const std::string& decided) { return decided == applicationId; });
}

bool StoredValues::isAnythingPending() const {
  if (boolean(key::uploadConsentRequestPending)) return true;
  const auto* purposes = find<std::vector<std::int64_t>>(key::pendingPurposesList);
  const auto* permissions = find<std::vector<std::string>>(key::pendingPermissionsList);
  return (purposes && !purposes->empty()) || (permissions && !permissions->empty());
}

std::vector<std::int64_t> StoredValues::pendingPurposes() const {
  return numbers(key::pendingPurposesList);
}

std::vector<std::string> StoredValues::pendingPermissions() const {
  const auto* list = find<std::vector<std::string>>(key::pendingPermissionsList);
  return list ? *list : std::vector<std::string>();
}

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
