// One permission source of the device.
#pragma once

#include <expected>
#include <functional>
#include <string>

#include "platform/PermissionSources.h"

namespace quillon {

// Used on one thread only.
class PermissionSource {
 public:
  using Answer = std::expected<PermissionSources::Value, std::string>;

  virtual ~PermissionSource() = default;

  // Calls `done` later or at once, on the same thread.
  virtual void ask(std::move_only_function<void(Answer)> done) = 0;
};

}  // namespace quillon
