// Permission statuses that are set by hand while the application runs.
#pragma once

#include <expected>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "platform/PermissionSources.h"

namespace quillon {

// Thread-safe. A key without a value answers the error "not available".
class SettablePermissionSources : public PermissionSources {
 public:
  // The platform value to answer from now on; nothing takes the source away.
  void set(const VantariKey& key, std::optional<int> value);

  std::expected<int, std::string> platformValue(const VantariKey& key) const override;

 private:
  mutable std::mutex mutex_;
  std::map<std::string, int, std::less<>> values_;  // by raw value of the key
};

}  // namespace quillon
