// Permission statuses set at run time.
#pragma once

#include <expected>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "platform/PermissionSources.h"
#include "platform/parts/ChangeObservers.h"

namespace quillon {

// Thread-safe. Keys not set use the device's sources, if any.
class SettablePermissionSources : public PermissionSources {
 public:
  explicit SettablePermissionSources(std::shared_ptr<PermissionSources> device = nullptr)
      : device_(std::move(device)) {}

  // Sets a source's value; observers are called.
  void set(const VantariKey& key, std::expected<Value, std::string> answer);

  std::expected<Value, std::string> platformValue(const VantariKey& key) const override;
  std::expected<Value, std::string> knownValue(const VantariKey& key) const override;
  std::unique_ptr<PermissionSubscription> observe(std::function<void()> changed) override;

 private:
  class Subscription;

  std::optional<std::expected<Value, std::string>> given(const VantariKey& key) const;

  const std::shared_ptr<PermissionSources> device_;
  ChangeObservers<PermissionSubscription> observers_;
  mutable std::mutex mutex_;                                                       // guards the member below
  std::map<std::string, std::expected<Value, std::string>, std::less<>> answers_;  // by the key's raw value
};

}  // namespace quillon
