#include "core/ConsentSDK/DecisionRecorder.h"
#include "core/History/NoticeArchive.h"
#include "core/Logger/UnitLog.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"

namespace quillon {

bool DecisionRecorder::set(const Purpose& purpose, ConsentStatus consent) {
  if (!purpose.purposeId) return false;
  DecisionContext context = s_.sessions.context(GivenType::explicitly);
  context.notice = applicationsNotice;
  const bool stored = s_.store.transact([&](StoreTransaction& transaction) {
    PurposeManager::setConsent(transaction, {*purpose.purposeId, consent, DecisionCause::user}, context);
  });
  if (!stored) return false;
  warn(purpose, consent);
  s_.uploader.schedule();
  s_.work.run([this] { s_.loader.refreshConsentMode(); });
  return true;
}

// Only warns: the decision is stored, since the application may have a newer configuration than this process.
void DecisionRecorder::warn(const Purpose& purpose, ConsentStatus consent) {
  const UnitLog log(s_.logger, unit::decisions);
  const auto inForce = s_.loader.inForce();
  if (!inForce) return;
  const std::string name = "Purpose " + std::to_string(*purpose.purposeId);
  if (!inForce->terms.lists(*purpose.purposeId)) {
    log(LogLevel::warning, name + " is not listed by the configuration: its consent is stored, and uploaded once it is",
        "set(purpose:consent:)");
  } else if (inForce->terms.isEssential(*purpose.purposeId) && consent != ConsentStatus::granted) {
    log(LogLevel::warning,
        name + " is essential: users cannot opt out of it on the screens, yet " + std::string(rawValue(consent)) +
            " is stored",
        "set(purpose:consent:)");
  }
}

bool DecisionRecorder::set(const AppPermission& permission, ConsentStatus consent) {
  if (!permission.permissionId || key::isReserved(permission.permissionId->rawValue())) return false;
  DecisionContext context = s_.sessions.context(GivenType::explicitly);
  context.notice = applicationsNotice;
  return s_.store.transact([&](StoreTransaction& transaction) {
    PermissionManager::setConsent(transaction, *permission.permissionId, consent, DecisionCause::user, context);
  });
}

void DecisionRecorder::recordDefaults(const ConfigurationPointer& configuration) {
  const PurposeManager manager = s_.loader.purposes(configuration);
  const DecisionContext context = s_.sessions.context(GivenType::implicitly);
  s_.loader.transact([&](StoreTransaction& transaction) { manager.recordDefaults(transaction, context); });
}

DecisionRecorder::FollowUp DecisionRecorder::store(std::string notice, const Write& write) {
  const ConfigurationPointer configuration = s_.loader.current();
  if (!configuration) {
    UnitLog(s_.logger, unit::decisions)(LogLevel::error, "There is no configuration whose purposes could be answered",
                                        "record");
    return {};
  }
  const PurposeManager manager = s_.loader.purposes(configuration);
  DecisionContext context = s_.sessions.context(GivenType::explicitly);
  context.notice = std::move(notice);
  const bool stored = s_.loader.transact([&](StoreTransaction& transaction) {
    const GivenType given = write(manager, transaction, context);
    // The answer counts even without purposes, and when no purpose changed.
    transaction.setGivenType(given);
    if (given != GivenType::explicitly) return;
    transaction.remove(key::lostEntries);
    transaction.set(key::isBannerPresent, false);
  });
  if (!stored) return {};
  return [this, configuration, place = permissions_.join()]() mutable {
    return storePermissions(configuration, std::move(place));
  };
}

Task<void> DecisionRecorder::storePermissions(ConfigurationPointer configuration, TaskQueue::Place place) {
  s_.loader.refreshConsentMode();
  {
    const auto held = std::move(place);
    co_await held.turn();
    s_.loader.permissions(configuration).storeStatuses(s_.sessions.context(GivenType::noAction));
  }
  co_await s_.uploader.uploadPending(ConsentUploader::Trigger::automatic);
}

DecisionRecorder::FollowUp DecisionRecorder::answer(bool accept, std::string notice) {
  return store(std::move(notice),
               [accept](const PurposeManager& manager, StoreTransaction& transaction, const DecisionContext& context) {
                 for (const auto& resolution : manager.answer(accept, transaction)) {
                   PurposeManager::setConsent(transaction, resolution, context);
                 }
                 return GivenType::explicitly;
               });
}

DecisionRecorder::FollowUp DecisionRecorder::save(const std::map<std::int64_t, bool>& selectedPurposes,
                                                  std::string notice) {
  return store(std::move(notice), [&selectedPurposes](const PurposeManager& manager, StoreTransaction& transaction,
                                                      const DecisionContext& context) {
    for (const auto& resolution : manager.choices(selectedPurposes, transaction)) {
      const std::int64_t id = resolution.purposeId;
      // The user has seen the signal's decisions, so they become the user's own choice.
      const bool isSignals = manager.isOptedOutBySignal(id, transaction) || transaction.isDecidedBySignal(id);
      if (isSignals || transaction.consent(PurposeKey(id)) != resolution.status) {
        PurposeManager::setConsent(transaction, resolution, context);
      } else if (resolution.cause == DecisionCause::user) {
        transaction.confirm(id);
      }
    }
    return GivenType::explicitly;
  });
}

DecisionRecorder::FollowUp DecisionRecorder::recordDefaults(std::string notice) {
  const auto inForce = s_.loader.inForce();
  if (!inForce || !inForce->type) return {};  // no banner could have been answered
  return store(std::move(notice),
               [](const PurposeManager& manager, StoreTransaction& transaction, const DecisionContext& context) {
                 return manager.recordDefaults(transaction, context);
               });
}

}  // namespace quillon
