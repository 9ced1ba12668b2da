// Lets calls through until it is closed: what a dropped timer or subscription closes behind itself.
#pragma once

#include <mutex>
#include <utility>

namespace quillon {

// Thread-safe. Calls through one gate run one at a time.
class CallGate {
 public:
  template <class Call>
  void pass(Call&& call) {
    const std::lock_guard lock(mutex_);
    if (!closed_) std::forward<Call>(call)();
  }

  // No call begins afterwards, and one that is under way on another thread has ended. From within a call it only
  // closes.
  void close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
  }

 private:
  std::recursive_mutex mutex_;  // recursive so that a call may close its own gate
  bool closed_ = false;
};

}  // namespace quillon
