// One thread tells another that something has happened.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace quillon::test {

// Unlike a promise it may be destroyed as soon as wait has returned, even while set is on its way out.
class Signal {
 public:
  void set() {
    const std::lock_guard lock(mutex_);
    isSet_ = true;
    changed_.notify_all();
  }

  // Whether it was set within that time.
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
