// What is recorded of the user's answers, and in their absence.
#include "core/ConsentSDK/ConsentSDKCore.h"
#include "core/Logger/UnitLog.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"

namespace quillon {
namespace {

constexpr std::string_view sourceFile = "ConsentSDK/ConsentSDK+Decisions";

}  // namespace

void ConsentSDK::Core::recordDefaults(ConfigurationPointer configuration) {
  const PurposeManager manager = purposes(std::move(configuration));
  store.transact(
      [&](StoreTransaction& transaction) { manager.recordDefaults(transaction, occasion(GivenType::implicitly)); });
}

Task<bool> ConsentSDK::Core::record(Record write) {
  const ConfigurationPointer configuration = cache.current();
  if (!configuration) {
    UnitLog(logger, sourceFile)(LogLevel::error, "There is no configuration whose purposes could be answered",
                                "record");
    co_return false;
  }
  const PurposeManager manager = purposes(configuration);
  const auto statuses = permissions(configuration).liveStatuses();
  Occasion present = occasion(GivenType::explicitly);
  const bool stored = store.transact([&](StoreTransaction& transaction) {
    const GivenType given = present.givenType = write(manager, transaction, present);
    for (const auto& [permission, status] : statuses) {
      if (transaction.consent(permission.rawValue()) == status) continue;
      PermissionManager::setConsent(transaction, permission, status, DecisionCause::device, present);
    }
    if (given == GivenType::explicitly) transaction.remove(key::lostEntries);
    // Also an application without purposes has been answered, and so has one whose purposes all stay as they were.
    const bool isExplicit = transaction.consentGivenType() == givenType::explicitly;
    if (given == GivenType::explicitly || (given == GivenType::implicitly && !isExplicit)) {
      transaction.set(key::consentGivenType, std::string(rawValue(given)));
    }
  });
  if (!stored) co_return false;
  refreshConsentMode();
  co_await uploadPendingConsents();
  co_return true;
}

Task<bool> ConsentSDK::Core::acceptOrReject(bool accept) {
  return record([accept](const PurposeManager& manager, StoreTransaction& transaction, const Occasion& occasion) {
    for (const auto& resolution : manager.answer(accept, transaction)) {
      PurposeManager::setConsent(transaction, resolution, occasion);
    }
    return GivenType::explicitly;
  });
}

Task<bool> ConsentSDK::Core::savePreferences(std::map<std::int64_t, bool> selectedPurposes) {
  return record([selected = std::move(selectedPurposes)](const PurposeManager& manager, StoreTransaction& transaction,
                                                         const Occasion& occasion) {
    for (const auto& resolution : manager.choices(selected, transaction)) {
      if (transaction.consent(PurposeKey(resolution.purposeId)) == resolution.status) continue;
      PurposeManager::setConsent(transaction, resolution, occasion);
    }
    return GivenType::explicitly;
  });
}

Task<bool> ConsentSDK::Core::recordDefaultExplicitConsents() {
  return record([](const PurposeManager& manager, StoreTransaction& transaction, const Occasion& occasion) {
    return manager.recordDefaults(transaction, occasion);
  });
}

}  // namespace quillon
