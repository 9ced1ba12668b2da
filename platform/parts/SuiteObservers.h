// The observers of a suite's changes by other processes.
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

  // Calls all observers on this thread, each through its own gate. Call it without a lock.
  void notify() noexcept;

  [[nodiscard]] bool empty() const noexcept;

 private:
  struct Observer;
  class Subscription;

  mutable std::mutex mutex_;
  std::vector<std::weak_ptr<Observer>> observers_;
};

}  // namespace quillon
