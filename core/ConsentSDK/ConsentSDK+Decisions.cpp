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
  store.transact([&](StoreTransaction& transaction) { manager.recordDefaults(transaction, now()); });
}

Task<bool> ConsentSDK::Core::record(Record write) {
  const ConfigurationPointer configuration = cache.readCDNFile(true);
  if (!configuration) {
    UnitLog(logger, sourceFile)(LogLevel::error, "There is no configuration whose purposes could be answered",
                                "record");
    co_return false;
  }
  const PurposeManager manager = purposes(configuration);
  const auto statuses = permissions(configuration).liveStatuses();
  const std::int64_t time = now();
  const bool stored = store.transact([&](StoreTransaction& transaction) {
    const std::string_view given = write(manager, transaction, time);
    for (const auto& [permission, status] : statuses) {
      if (transaction.consent(permission.rawValue()) == status) continue;
      PermissionManager::setConsent(transaction, permission, status, given, time);
    }
    // Also an application without purposes has been answered, and so has one whose purposes all stay as they were.
    const bool isExplicit = transaction.consentGivenType() == givenType::explicitly;
    if (given == givenType::explicitly || (given == givenType::implicitly && !isExplicit)) {
      transaction.set(key::consentGivenType, std::string(given));
    }
  });
  if (!stored) co_return false;
  refreshConsentMode();
  co_await uploadPendingConsents();
  co_return true;
}

Task<bool> ConsentSDK::Core::acceptOrReject(bool accept) {
  return record([accept](const PurposeManager& manager, StoreTransaction& transaction, std::int64_t time) {
    for (const auto& [id, status] : manager.answer(accept, transaction)) {
      PurposeManager::setConsent(transaction, id, status, givenType::explicitly, time);
    }
    return givenType::explicitly;
  });
}

Task<bool> ConsentSDK::Core::savePreferences(std::map<std::int64_t, bool> selectedPurposes) {
  return record([selected = std::move(selectedPurposes)](const PurposeManager& manager, StoreTransaction& transaction,
                                                         std::int64_t time) {
    for (const auto& [id, status] : manager.choices(selected, transaction)) {
      if (transaction.consent(PurposeKey(id)) == status) continue;
      PurposeManager::setConsent(transaction, id, status, givenType::explicitly, time);
    }
    return givenType::explicitly;
  });
}

Task<bool> ConsentSDK::Core::recordDefaultExplicitConsents() {
  return record([](const PurposeManager& manager, StoreTransaction& transaction, std::int64_t time) {
    return manager.recordDefaults(transaction, time);
  });
}

}  // namespace quillon
