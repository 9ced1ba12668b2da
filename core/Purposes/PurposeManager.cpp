#include "core/Purposes/PurposeManager.h"

#include <algorithm>

#include "core/Logger/UnitLog.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Purposes/PurposeTerms.h"

namespace quillon {
namespace {

// The status of a purpose bound to app tracking.
ConsentStatus adjusted(ConsentStatus current, bool hasDecision, bool authorized) {
  if (authorized) return ConsentStatus::granted;
  if (!hasDecision) return ConsentStatus::declined;
  // An existing consent is withdrawn, not declined.
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
                               std::shared_ptr<const MainConfiguration> configuration, OptOuts optOuts)
    : platform_(platform),
      store_(store),
      logger_(logger),
      configuration_(std::move(configuration)),
      optOuts_(std::move(optOuts)),
      tracking_(platform.tracking->authorization() == TrackingAuthorization::authorized) {
  if (!configuration_) return;
  const auto bound = purposesBoundToTracking(*configuration_);
  attMapped_.insert(bound.begin(), bound.end());
}

const std::vector<Purpose>& PurposeManager::purposes() const {
  static const std::vector<Purpose> none;
  return configuration_ && configuration_->purposes ? *configuration_->purposes : none;
}

ConsentStatus PurposeManager::currentStatus(std::int64_t purposeId, const StoredValues& stored) const {
  // The opt-outs may be of another configuration, which does not bind the purpose to tracking.
  if (!isATTMapped(purposeId) && optOuts_.include(purposeId, stored)) return ConsentStatus::declined;
  const auto decision = stored.consent(PurposeKey(purposeId));
  const ConsentStatus status = decision.value_or(stored.complianceDefault());
  return isATTMapped(purposeId) ? adjusted(status, decision.has_value(), tracking_) : status;
}

bool PurposeManager::checkPurposes(const DecisionContext& context) {
  const UnitLog log(logger_, unit::purposeManager);
  log(LogLevel::info, "Purposes consent checks executed", "checkPurposes()");

  // The flag in the host's standard defaults; the one that setConsent() writes into the suite is for other readers.
  const bool flagged = StoredValues(*platform_.store->standardDefaults()->snapshot()).boolean(key::arePurposesChanged);
  bool undecided = false;
  bool signalled = false;
  std::vector<std::int64_t> changedIds;
  store_.transact([&](StoreTransaction& transaction) {
    undecided = false;
    changedIds.clear();
    signalled = honourSignals(transaction, context);
    for (const Purpose& purpose : purposes()) {
      if (!purpose.purposeId) continue;
      const std::int64_t id = *purpose.purposeId;
      const auto decision = transaction.consent(PurposeKey(id));
      if (!decision) undecided = true;
      const ConsentStatus before = decision.value_or(transaction.complianceDefault());
      const ConsentStatus status = currentStatus(id, transaction);
      if (isATTMapped(id) && status != before) {
        // The device's decision: `context` says so, and how the consents were given stays unchanged.
        setConsent(transaction, {id, status, DecisionCause::trackingStatus}, context);
        changedIds.push_back(id);
      }
    }
  });
  if (!changedIds.empty()) {
    log(LogLevel::debug, "Changed Purposes: " + listText(changedIds), "checkPurposes()");
  }
  return flagged || undecided || signalled || !changedIds.empty();
}

bool PurposeManager::honourSignals(const DecisionContext& context) {
  bool changed = false;
  store_.transact([&](StoreTransaction& transaction) { changed = honourSignals(transaction, context); });
  return changed;
}

bool PurposeManager::honourSignals(StoreTransaction& transaction, const DecisionContext& context) const {
  bool changed = false;
  for (const std::int64_t id : transaction.decidedBySignal()) {
    if (optOuts_.include(id, transaction)) continue;
    transaction.endSignal(id, context.time);
    changed = true;
  }
  for (const Purpose& purpose : purposes()) {
    if (!purpose.purposeId || !optOuts_.include(*purpose.purposeId, transaction)) continue;
    if (transaction.isDecidedBySignal(*purpose.purposeId)) continue;
    setConsent(transaction, {*purpose.purposeId, ConsentStatus::declined, DecisionCause::signal}, context);
    changed = true;
  }
  return changed;
}

bool PurposeManager::areSettledBySignal(const StoredValues& stored) const {
  bool asks = false;
  for (const Purpose& purpose : purposes()) {
    if (!purpose.purposeId || purpose.disableOptOut.value_or(false) || isATTMapped(*purpose.purposeId)) continue;
    if (!optOuts_.include(*purpose.purposeId, stored)) return false;
    asks = true;
  }
  return asks;
}

std::vector<Purpose> PurposeManager::purposesWithConsents() const {
  const auto entries = store_.snapshot();
  const StoredValues stored(*entries);
  std::vector<Purpose> result = purposes();
  for (Purpose& purpose : result) {
    if (!purpose.purposeId) continue;
    purpose.consentStatus = currentStatus(*purpose.purposeId, stored);
    purpose.isOptedOutBySignal = optOuts_.include(*purpose.purposeId, stored);
    if (!isATTMapped(*purpose.purposeId)) continue;
    purpose.isATTMapped = true;
    if (configuration_->attConfig->showInfoOnPrefCenter.value_or(false)) {
      purpose.attDescription = configuration_->attConfig->infoText;
    }
  }
  return result;
}

PurposeManager::Resolution PurposeManager::decided(std::int64_t purposeId, bool granted, DecisionCause cause,
                                                   const StoredValues& stored) const {
  if (isATTMapped(purposeId)) {
    return {purposeId, currentStatus(purposeId, stored), DecisionCause::trackingStatus};
  }
  return {purposeId, granted ? ConsentStatus::granted : ConsentStatus::declined, cause};
}

PurposeManager::Resolutions PurposeManager::answer(bool accept, const StoredValues& stored) const {
  Resolutions resolutions;
  for (const Purpose& purpose : purposes()) {
    if (!purpose.purposeId) continue;
    const bool essential = purpose.disableOptOut.value_or(false);
    const auto cause = essential ? DecisionCause::essential : DecisionCause::user;
    resolutions.push_back(decided(*purpose.purposeId, accept || essential, cause, stored));
  }
  return resolutions;
}

PurposeManager::Resolutions PurposeManager::choices(const std::map<std::int64_t, bool>& selected,
                                                    const StoredValues& stored) const {
  Resolutions resolutions;
  for (const Purpose& purpose : purposes()) {
    if (!purpose.purposeId) continue;
    if (purpose.disableOptOut.value_or(false)) {
      // Not the user's choice; what is shown as active is stored as granted.
      resolutions.push_back(decided(*purpose.purposeId, true, DecisionCause::essential, stored));
      continue;
    }
    const auto choice = selected.find(*purpose.purposeId);
    if (choice == selected.end()) continue;
    resolutions.push_back(decided(*purpose.purposeId, choice->second, DecisionCause::user, stored));
  }
  return resolutions;
}

bool PurposeManager::hasDecisions(const StoredValues& stored) const {
  return std::ranges::any_of(purposes(), [&](const Purpose& purpose) {
    return purpose.purposeId && !isATTMapped(*purpose.purposeId) && !stored.isDecidedBySignal(*purpose.purposeId) &&
           stored.consent(PurposeKey(*purpose.purposeId));
  });
}

GivenType PurposeManager::recordDefaults(StoreTransaction& transaction, DecisionContext context) const {
  const bool awaitsAnswer = transaction.consentGivenType() == GivenType::noAction && hasDecisions(transaction);
  context.givenType = awaitsAnswer ? GivenType::noAction : GivenType::implicitly;
  for (const Purpose& purpose : purposes()) {
    if (!purpose.purposeId || transaction.consent(PurposeKey(*purpose.purposeId))) continue;
    if (optOuts_.include(*purpose.purposeId, transaction)) continue;
    const bool essential = purpose.disableOptOut.value_or(false);
    const bool granted = essential || transaction.complianceDefault() == ConsentStatus::granted;
    const auto cause = essential ? DecisionCause::essential : DecisionCause::byDefault;
    setConsent(transaction, decided(*purpose.purposeId, granted, cause, transaction), context);
  }
  return context.givenType;
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
    if (stored.isDecidedBySignal(*purpose.purposeId)) consents.back().cause = DecisionCause::signal;
  }
  return consents;
}

void PurposeManager::setConsent(StoreTransaction& transaction, const Resolution& resolution,
                                const DecisionContext& context) {
  const PurposeKey purposeKey(resolution.purposeId);
  const bool isAnswer = resolution.cause != DecisionCause::trackingStatus && resolution.cause != DecisionCause::signal;
  const auto before = transaction.consent(purposeKey);
  transaction.append({.time = context.time,
                      .purposeId = resolution.purposeId,
                      .from = before,
                      .to = resolution.status,
                      .cause = resolution.cause,
                      .givenType = context.givenType,
                      .language = context.language,
                      .notice = isAnswer && !context.notice.empty() ? std::optional(context.notice) : std::nullopt},
                     context.application);
  if (before != resolution.status) {
    transaction.set(key::arePurposesChanged, true);
    transaction.set(key::purposesChangeTimestamp, context.time);
  }
  transaction.setGivenType(context.givenType);
  transaction.addPendingPurpose(resolution.purposeId);
  transaction.decide(resolution.purposeId, resolution.status, resolution.cause);
}

}  // namespace quillon
