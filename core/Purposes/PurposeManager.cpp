#include "core/Purposes/PurposeManager.h"

#include <algorithm>

#include "core/Logger/UnitLog.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"

namespace quillon {
namespace {

constexpr std::string_view sourceFile = "Purposes/PurposeManager";

// What app tracking makes of the status of a purpose that is bound to it.
ConsentStatus adjusted(ConsentStatus current, bool hasDecision, bool authorized) {
  if (authorized) return ConsentStatus::granted;
  if (!hasDecision) return ConsentStatus::declined;
  // A consent that existed is taken back, not declined.
  const bool existed = current == ConsentStatus::granted || current == ConsentStatus::withDrawn;
  return existed ? ConsentStatus::withDrawn : ConsentStatus::declined;
}

std::string listText(const std::vector<std::int64_t>& numbers) {
  std::string text = "[";
  for (const auto number : numbers) {
    if (text.size() > 1) text += ", ";
    text += std::to_string(number);
  }
  return text + "]";
}

}  // namespace

PurposeManager::PurposeManager(const Platform& platform, UserDefaultManager& store, SDKLogger& logger,
                               std::shared_ptr<const MainConfiguration> configuration)
    : platform_(platform), store_(store), logger_(logger), configuration_(std::move(configuration)) {
  if (!configuration_ || !configuration_->isATTEnabled.value_or(false) || !configuration_->attConfig) return;
  if (const auto& bound = configuration_->attConfig->purposeIds) attMapped_.insert(bound->begin(), bound->end());
}

const std::vector<Purpose>& PurposeManager::purposes() const {
  static const std::vector<Purpose> none;
  return configuration_->purposes ? *configuration_->purposes : none;
}

bool PurposeManager::trackingAuthorized() const {
  return platform_.tracking->authorization() == TrackingAuthorization::authorized;
}

ConsentStatus PurposeManager::currentStatus(std::int64_t purposeId, const StoredValues& stored, bool tracking) const {
  const auto decision = stored.consent(PurposeKey(purposeId));
  const ConsentStatus status = decision.value_or(stored.complianceDefault());
  return isATTMapped(purposeId) ? adjusted(status, decision.has_value(), tracking) : status;
}

PurposeManager::Check PurposeManager::checkPurposes(const Occasion& occasion) {
  const UnitLog log(logger_, sourceFile);
  log(LogLevel::info, "Purposes consent checks executed", "checkPurposes()");

  // The flag is the host process's own; the one that setConsent() writes into the suite is for other readers.
  bool changed = StoredValues(*platform_.store->standardDefaults()->snapshot()).boolean(key::arePurposesChanged);
  std::vector<std::int64_t> changedIds;
  const bool tracking = trackingAuthorized();
  store_.transact([&](StoreTransaction& transaction) {
    for (const Purpose& purpose : purposes()) {
      if (!purpose.purposeId) continue;
      const std::int64_t id = *purpose.purposeId;
      const auto decision = transaction.consent(PurposeKey(id));
      if (!decision) changed = true;
      const ConsentStatus before = decision.value_or(transaction.complianceDefault());
      const ConsentStatus status = currentStatus(id, transaction, tracking);
      if (isATTMapped(id) && status != before) {
        // The device decided, not the user: the occasion says so, and how the consents were given stays as it is.
        setConsent(transaction, {id, status, DecisionCause::trackingStatus}, occasion);
        changedIds.push_back(id);
      }
    }
  });
  if (!changedIds.empty()) {
    log(LogLevel::debug, "Changed Purposes: " + listText(changedIds), "checkPurposes()");
    changed = true;
  }
  return {pendingConsents(StoredValues(*store_.snapshot())), changed};
}

std::vector<Purpose> PurposeManager::purposesWithConsents() const {
  const auto entries = store_.snapshot();
  const StoredValues stored(*entries);
  const bool tracking = trackingAuthorized();
  std::vector<Purpose> result = purposes();
  for (Purpose& purpose : result) {
    if (!purpose.purposeId) continue;
    purpose.consentStatus = currentStatus(*purpose.purposeId, stored, tracking);
    if (!isATTMapped(*purpose.purposeId)) continue;
    purpose.isATTMapped = true;
    if (configuration_->attConfig->showInfoOnPrefCenter.value_or(false)) {
      purpose.attDescription = configuration_->attConfig->infoText;
    }
  }
  return result;
}

PurposeManager::Resolution PurposeManager::decided(std::int64_t purposeId, bool granted, DecisionCause cause,
                                                   const StoredValues& stored, bool tracking) const {
  if (isATTMapped(purposeId)) {
    return {purposeId, currentStatus(purposeId, stored, tracking), DecisionCause::trackingStatus};
  }
  return {purposeId, granted ? ConsentStatus::granted : ConsentStatus::declined, cause};
}

PurposeManager::Resolutions PurposeManager::answer(bool accept, const StoredValues& stored) const {
  const bool tracking = trackingAuthorized();
  Resolutions resolutions;
  for (const Purpose& purpose : purposes()) {
    if (!purpose.purposeId) continue;
    const bool essential = purpose.disableOptOut.value_or(false);
    const auto cause = essential && !accept ? DecisionCause::essential : DecisionCause::user;
    resolutions.push_back(decided(*purpose.purposeId, accept || essential, cause, stored, tracking));
  }
  return resolutions;
}

PurposeManager::Resolutions PurposeManager::choices(const std::map<std::int64_t, bool>& selected,
                                                    const StoredValues& stored) const {
  const bool tracking = trackingAuthorized();
  Resolutions resolutions;
  for (const Purpose& purpose : purposes()) {
    if (!purpose.purposeId) continue;
    const auto choice = selected.find(*purpose.purposeId);
    if (choice == selected.end()) continue;
    // The user cannot choose about an essential purpose: it gets its default unless a decision stands.
    const bool undecided = !stored.consent(PurposeKey(*purpose.purposeId));
    const bool essential = !choice->second && undecided && purpose.disableOptOut.value_or(false);
    const auto cause = essential ? DecisionCause::essential : DecisionCause::user;
    resolutions.push_back(decided(*purpose.purposeId, choice->second || essential, cause, stored, tracking));
  }
  return resolutions;
}

bool PurposeManager::hasDecisions(const StoredValues& stored) const {
  return std::ranges::any_of(purposes(), [&](const Purpose& purpose) {
    return purpose.purposeId && !isATTMapped(*purpose.purposeId) && stored.consent(PurposeKey(*purpose.purposeId));
  });
}

GivenType PurposeManager::recordDefaults(StoreTransaction& transaction, Occasion occasion) const {
  const bool awaitsAnswer = transaction.consentGivenType() == givenType::noAction && hasDecisions(transaction);
  occasion.givenType = awaitsAnswer ? GivenType::noAction : GivenType::implicitly;
  const bool tracking = trackingAuthorized();
  for (const Purpose& purpose : purposes()) {
    if (!purpose.purposeId || transaction.consent(PurposeKey(*purpose.purposeId))) continue;
    const bool essential = purpose.disableOptOut.value_or(false);
    const bool granted = essential || transaction.complianceDefault() == ConsentStatus::granted;
    const auto cause = essential ? DecisionCause::essential : DecisionCause::byDefault;
    setConsent(transaction, decided(*purpose.purposeId, granted, cause, transaction, tracking), occasion);
  }
  return occasion.givenType;
}

std::vector<PurposeConsent> PurposeManager::pendingConsents(const StoredValues& stored) const {
  const auto list = stored.pendingPurposes();
  const std::unordered_set<std::int64_t> pending(list.begin(), list.end());
  const std::int64_t changeTime = stored.integer(key::purposesChangeTimestamp, wholeSeconds(platform_.clock->now()));
  std::vector<PurposeConsent> consents;
  for (const Purpose& purpose : purposes()) {
    if (!purpose.purposeId || !pending.contains(*purpose.purposeId)) continue;
    const auto status = stored.consentOrDefault(PurposeKey(*purpose.purposeId));
    consents.push_back({*purpose.purposeId, status, changeTime, purpose.disableOptOut.value_or(false)});
  }
  return consents;
}

void PurposeManager::setConsent(StoreTransaction& transaction, const Resolution& resolution, const Occasion& occasion) {
  const PurposeKey purposeKey(resolution.purposeId);
  const auto before = transaction.consent(purposeKey);
  transaction.record({.time = occasion.time,
                      .purposeId = resolution.purposeId,
                      .from = before,
                      .to = resolution.status,
                      .cause = resolution.cause,
                      .givenType = occasion.givenType,
                      .language = occasion.language});
  if (before != resolution.status) {
    transaction.set(key::arePurposesChanged, true);
    transaction.set(key::purposesChangeTimestamp, occasion.time);
  }
  if (occasion.givenType != GivenType::noAction) {
    transaction.set(key::consentGivenType, std::string(rawValue(occasion.givenType)));
  }
  transaction.addPendingPurpose(resolution.purposeId);
  transaction.set(purposeKey, std::string(rawValue(resolution.status)));
}

}  // namespace quillon
