// This application's entries in the desktop's permission store.
#pragma once

#include <functional>
#include <string>

#include "platform/linux/Bus/BusService.h"
#include "platform/linux/PermissionSources/PermissionSource.h"

namespace quillon {

[[nodiscard]] BusService permissionStore(MessageBus& session);

// A store entry, and how its values map to platform values.
struct StoreEntry {
  const char* table;
  const char* id;
  int unset;  // not decided for this application
  int (*meaning)(const std::string& word);
};

extern const StoreEntry cameraEntry;
extern const StoreEntry microphoneEntry;
extern const StoreEntry locationEntry;
extern const StoreEntry notificationsEntry;

class StoredPermission : public PermissionSource {
 public:
  // Calls `changed` on the loop's thread when the entry's table may have changed.
  StoredPermission(MessageBus& session, BusService& store, const StoreEntry& entry, std::string application,
                   std::function<void()> changed);

  // Zero on a system without the store: the user was never asked.
  void ask(std::move_only_function<void(Answer)> done) override;

 private:
  Answer answer(const BusService::Reply& reply) const;

  BusService& store_;
  const StoreEntry& entry_;
  const std::string application_;
};

}  // namespace quillon
