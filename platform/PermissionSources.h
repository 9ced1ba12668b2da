// The device's own permission statuses.
#pragma once

#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "quillon/VantariKey.h"

namespace quillon {

// Dropping it ends the reports; it waits for one that is running on another thread.
class PermissionSubscription {
 public:
  virtual ~PermissionSubscription() = default;
};

// Thread-safe. Never throws.
class PermissionSources {
 public:
  // What the source behind a permission key says; its meaning depends on the key. Nothing when the device has no such
  // source.
  using Value = std::optional<int>;

  virtual ~PermissionSources() = default;

  // Asks the source now, or says why that failed. Waits at most two seconds, so never on the main queue.
  virtual std::expected<Value, std::string> platformValue(const VantariKey& key) const = 0;

  // What the source is known to say, without waiting: kept up to date where the device reports changes. An error when
  // nothing is known yet.
  virtual std::expected<Value, std::string> knownValue(const VantariKey& key) const = 0;

  // Calls back, from any thread, after the answer of some source may have become another one. The handler must not
  // block.
  [[nodiscard]] virtual std::unique_ptr<PermissionSubscription> observe(std::function<void()> changed) = 0;
};

}  // namespace quillon
