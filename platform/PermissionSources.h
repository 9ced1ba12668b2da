// The device's permission statuses.
#pragma once

#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "quillon/VantariKey.h"

namespace quillon {

// Destruction ends the reports and waits for one running on another thread.
class PermissionSubscription {
 public:
  virtual ~PermissionSubscription() = default;
};

// Thread-safe. Never throws.
class PermissionSources {
 public:
  // The value from the source behind a permission key; its meaning depends on the key. nullopt when the device has no
  // such source.
  using Value = std::optional<int>;

  virtual ~PermissionSources() = default;

  // Queries the source. Waits up to two seconds, so never call it on the main queue. The error is for the log.
  virtual std::expected<Value, std::string> platformValue(const VantariKey& key) const = 0;

  // The source's last known value, without waiting; kept current where the device reports changes. An error when none
  // is known yet.
  virtual std::expected<Value, std::string> knownValue(const VantariKey& key) const = 0;

  // Calls `changed` from any thread when a source's value may have changed. It must not block.
  [[nodiscard]] virtual std::unique_ptr<PermissionSubscription> observe(std::function<void()> changed) = 0;
};

}  // namespace quillon
