// The host callbacks currently running.
#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace quillon {

// Thread-safe.
class HostCalls {
 public:
  // One running callback, on one thread.
  class Call {
   public:
    explicit Call(HostCalls& calls) : calls_(calls) {
      const std::scoped_lock lock(calls_.mutex_);
      calls_.threads_.push_back(std::this_thread::get_id());
    }
    ~Call() {
      const std::scoped_lock lock(calls_.mutex_);
      calls_.threads_.erase(std::ranges::find(calls_.threads_, std::this_thread::get_id()));
      calls_.over_.notify_all();
    }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

   private:
    HostCalls& calls_;
  };

  // Waits until none runs on another thread, at most until the deadline.
  void waitForOthers(std::chrono::steady_clock::time_point deadline) {
    std::unique_lock lock(mutex_);
    over_.wait_until(lock, deadline, [this] {
      return std::ranges::all_of(threads_, [](auto thread) { return thread == std::this_thread::get_id(); });
    });
  }

 private:
  std::mutex mutex_;  // guards the member below
  std::vector<std::thread::id> threads_;
  std::condition_variable over_;
};

}  // namespace quillon
