#include "platform/memory/SettablePermissionSources.h"

namespace quillon {

void SettablePermissionSources::set(const VantariKey& key, std::optional<int> value) {
  const std::lock_guard lock(mutex_);
  if (value) {
    values_.insert_or_assign(key.rawValue(), *value);
  } else {
    values_.erase(key.rawValue());
  }
}

std::expected<int, std::string> SettablePermissionSources::platformValue(const VantariKey& key) const {
  const std::lock_guard lock(mutex_);
  const auto found = values_.find(key.rawValue());
  if (found == values_.end()) return std::unexpected("not available");
  return found->second;
}

}  // namespace quillon
