// App permissions as consents: the device's answers, translated, stored and checked for changes.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "core/Persistance/UserDefaults/UserDefaultManager.h"
#include "quillon/MainConfiguration.h"
#include "quillon/PostConsentsRequest.h"

namespace quillon {

// Thread-safe; all durable state is in the store.
class PermissionManager {
 public:
  // Platform, store and logger must outlive it.
  PermissionManager(const Platform& platform, UserDefaultManager& store, SDKLogger& logger,
                    std::shared_ptr<const MainConfiguration> configuration)
      : platform_(platform), store_(store), logger_(logger), configuration_(std::move(configuration)) {}

  // The device's current answer; a failing source is logged and gives notDetermined. May wait for a source, so never
  // call it on the main queue.
  ConsentStatus getConsentByPermission(const VantariKey& vantiriKey) const;

  // The device's last known answer, without waiting; nullopt when unknown.
  std::optional<ConsentStatus> knownConsent(const VantariKey& permission) const;

  // Stores changes on the device since the last check and marks them for upload. True when there were any.
  bool checkPermissions(const DecisionContext& context);

  // Stores the device's current answers where they differ from the stored ones. True when any did.
  bool storeStatuses(const DecisionContext& context);

  // Every configured permission with a key, in display order, with the device's current answer.
  std::vector<std::pair<VantariKey, ConsentStatus>> liveStatuses() const;

  // The permissions in display order, with the device's current answer and whether the settings prompt may be offered.
  std::vector<AppPermission> permissionsWithConsents() const;

  // The pending states as uploaded, from one snapshot of the store.
  std::vector<PermissionConsent> pendingConsents(const StoredValues& stored) const;

  bool lists(const VantariKey& permission) const;

  // Writes one state and all values that depend on it.
  static void setConsent(StoreTransaction& transaction, const VantariKey& permission, ConsentStatus status,
                         DecisionCause cause, const DecisionContext& context);

 private:
  const std::vector<AppPermission>& permissions() const;

  const Platform& platform_;
  UserDefaultManager& store_;
  SDKLogger& logger_;
  const std::shared_ptr<const MainConfiguration> configuration_;
};

// Whether the configuration has a settings prompt for the permission.
[[nodiscard]] bool hasSettingsPrompt(const MainConfiguration& configuration, const VantariKey& permission);

}  // namespace quillon
