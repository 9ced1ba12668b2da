// One callback of the application's that can be ended from any thread.
#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

namespace quillon {

// Thread-safe. No lock is held while the callback runs.
template <class... Arguments>
class HostCallback {
 public:
  using Call = std::function<void(Arguments...)>;

  explicit HostCallback(Call call) : call_(std::make_shared<const Call>(std::move(call))) {}

  // Does nothing once it has ended. Calls come from one thread, possibly from within one another.
  void operator()(Arguments... arguments) {
    std::shared_ptr<const Call> call;  // outlives an end from within
    {
      const std::scoped_lock lock(mutex_);
      if (!call_) return;
      call = call_;
      thread_ = std::this_thread::get_id();
      ++running_;
    }
    const std::shared_ptr<void> end(nullptr, [this](void*) {
      const std::scoped_lock lock(mutex_);
      if (--running_ == 0) idle_.notify_all();
    });
    (*call)(arguments...);
  }

  // Waits for a call that runs on another thread. What the callback holds goes with it.
  void end() {
    std::shared_ptr<const Call> call;
    std::unique_lock lock(mutex_);
    call.swap(call_);
    idle_.wait(lock, [this] { return running_ == 0 || thread_ == std::this_thread::get_id(); });
  }

  [[nodiscard]] bool hasEnded() const {
    const std::scoped_lock lock(mutex_);
    return !call_;
  }

 private:
  mutable std::mutex mutex_;  // guards the members below
  std::condition_variable idle_;
  std::shared_ptr<const Call> call_;
  std::thread::id thread_;  // of the call that runs
  int running_ = 0;
};

}  // namespace quillon
