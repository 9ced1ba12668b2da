// The callbacks of ConsentSDK::whileAllowed().
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "core/ConsentSDK/Followers.h"
#include "core/ConsentSDK/HostCallback.h"
#include "platform/Job.h"
#include "quillon/Listeners.h"

namespace quillon {

// Thread-safe. Each gate is evaluated on the main queue, at the moment of the call, so that the application never
// starts what was refused meanwhile.
class Gates {
 public:
  Gates(std::function<void(Job)> onMain, std::function<bool(std::int64_t)> isAllowed)
      : onMain_(std::move(onMain)), isAllowed_(std::move(isAllowed)) {}

  Listening add(std::int64_t purposeId, std::function<void()> start, std::function<void()> stop);

  // Re-evaluates every gate.
  void update();
  // Notified of changes on the thread that made them; must only post work.
  Followers<> followers;

 private:
  struct Gate;

  void evaluate(const std::shared_ptr<Gate>& gate);

  const std::function<void(Job)> onMain_;
  const std::function<bool(std::int64_t)> isAllowed_;
  std::mutex mutex_;  // guards the member below; never held while a gate is evaluated
  std::vector<std::weak_ptr<Gate>> gates_;
};

}  // namespace quillon
