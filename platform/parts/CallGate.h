// A lock that serialises calls until it is closed. Timers and subscriptions close it on destruction.
#pragma once

#include <mutex>
#include <utility>

namespace quillon {

// Thread-safe.
class CallGate {
 public:
  template <class Call>
  void pass(Call&& call) {
    const std::lock_guard lock(mutex_);
    if (!closed_) std::forward<Call>(call)();
  }

  // Afterwards no call begins. Waits for a call running on another thread, but not when called inside a call.
  void close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
  }

 private:
  std::recursive_mutex mutex_;  // recursive so that a call may close its own gate
  bool closed_ = false;
};

}  // namespace quillon
