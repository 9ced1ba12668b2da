// A callback of the application that can be ended from any thread.
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

  // Calls the callback unless it has ended. Calls come from one thread and may nest.
  void operator()(Arguments... arguments) {
    std::shared_ptr<const Call> call;  // survives an end() from within the call
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

  // Waits for a call running on another thread, then destroys the callback.
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
  std::thread::id thread_;  // of the running call
  int running_ = 0;
};

}  // namespace quillon
