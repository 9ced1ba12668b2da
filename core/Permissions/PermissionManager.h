// App permissions as consents: what the device says, translated, stored and watched for changes.
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

  // What the device says now; a source that fails is logged and counts as not determined. May wait for a source, so
  // never on the main queue.
  ConsentStatus getConsentByPermission(const VantariKey& vantiriKey) const;

  // What the device is known to say, without waiting; nothing when it is not known yet.
  std::optional<ConsentStatus> knownConsent(const VantariKey& permission) const;

  // Stores what changed on the device since the last check and marks it for upload. True when anything did.
  bool checkPermissions(const DecisionContext& context);

  // Stores what the device says now wherever that differs from what is stored. True when anything did.
  bool recordStatuses(const DecisionContext& context);

  // Every configured permission with a key, in display order, with what the device says now.
  std::vector<std::pair<VantariKey, ConsentStatus>> liveStatuses() const;

  // The permissions in display order, each with what the device says now and whether the settings prompt may be
  // offered.
  std::vector<AppPermission> permissionsWithConsents() const;

  // The pending states as the upload carries them, read from one content of the store.
  std::vector<PermissionConsent> pendingConsents(const StoredValues& stored) const;

  bool lists(const VantariKey& permission) const;

  // Writes one state and everything that belongs to it.
  static void setConsent(StoreTransaction& transaction, const VantariKey& permission, ConsentStatus status,
                         DecisionCause cause, const DecisionContext& context);

 private:
  const std::vector<AppPermission>& permissions() const;

  const Platform& platform_;
  UserDefaultManager& store_;
  SDKLogger& logger_;
  const std::shared_ptr<const MainConfiguration> configuration_;
};

// Whether the document has a settings prompt for the permission.
[[nodiscard]] bool hasSettingsPrompt(const MainConfiguration& configuration, const VantariKey& permission);

}  // namespace quillon
