// The device's own permission statuses.
#pragma once

#include <expected>
#include <string>

#include "quillon/VantariKey.h"

namespace quillon {

// Thread-safe. An answer takes at most two seconds; never asked on the main queue.
class PermissionSources {
 public:
  virtual ~PermissionSources() = default;

  // The platform value of the source behind a permission key, or the error of asking. What the number means depends on
  // the key; a source that the device does not have answers an error.
  virtual std::expected<int, std::string> platformValue(const VantariKey& key) const = 0;
};

}  // namespace quillon
