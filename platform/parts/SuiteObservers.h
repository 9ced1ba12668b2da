// Those who want to hear of changes of a suite that they did not make.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/KeyValueSuite.h"

namespace quillon {

// Thread-safe. Subscriptions may outlive it.
class SuiteObservers {
 public:
  [[nodiscard]] std::unique_ptr<SuiteSubscription> add(std::function<void()> changed);

  // Calls all of them on this thread, each through its own gate. To be called without a lock.
  void notify() noexcept;

  [[nodiscard]] bool empty() const noexcept;

 private:
  struct Observer;
  class Subscription;

  mutable std::mutex mutex_;
  std::vector<std::weak_ptr<Observer>> observers_;
};

}  // namespace quillon
