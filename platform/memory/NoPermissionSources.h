// A device without permission settings.
#pragma once

#include "platform/PermissionSources.h"

namespace quillon {

// Thread-safe. No key has a source, and nothing changes.
class NoPermissionSources : public PermissionSources {
 public:
  std::expected<Value, std::string> platformValue(const VantariKey& /*key*/) const override { return Value(); }
  std::expected<Value, std::string> knownValue(const VantariKey& /*key*/) const override { return Value(); }
  std::unique_ptr<PermissionSubscription> observe(std::function<void()> /*changed*/) override {
    return std::make_unique<PermissionSubscription>();
  }
};

}  // namespace quillon
