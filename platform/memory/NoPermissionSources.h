// A device without permission settings.
#pragma once

#include <expected>
#include <string>

#include "platform/PermissionSources.h"

namespace quillon {

// Thread-safe. Every key answers the error "not available".
class NoPermissionSources : public PermissionSources {
 public:
  std::expected<int, std::string> platformValue(const VantariKey& key) const override;
};

}  // namespace quillon
