// An event that one thread signals to another.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace quillon::test {

// Unlike a promise it may be destroyed as soon as wait() has returned, even while set() is returning.
class Signal {
 public:
  void set() {
    const std::lock_guard lock(mutex_);
    isSet_ = true;
    changed_.notify_all();
  }

  // Whether it was set within the limit.
  [[nodiscard]] bool wait(std::chrono::milliseconds limit = std::chrono::seconds(10)) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, limit, [this] { return isSet_; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool isSet_ = false;
};

}  // namespace quillon::test
