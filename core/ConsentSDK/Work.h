// The running work of one instance: background tasks, and host calls on the main queue.
#pragma once

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <stop_token>
#include <utility>

#include "core/ConsentSDK/HostCalls.h"
#include "core/Tasks/TaskGroup.h"
#include "platform/Platform.h"
#include "quillon/SDKLogger.h"

namespace quillon {

// Thread-safe. Running work shares ownership of the owner, so tasks and calls may use all of it. Nothing begins after
// close().
class Work {
 public:
  // Both must outlive it.
  Work(const Platform& platform, SDKLogger& logger) : platform_(platform), logger_(logger) {}

  // Must be called once, before anything starts.
  void begin(std::weak_ptr<void> owner);

  // Runs a task in the background. Exceptions are logged.
  void start(std::move_only_function<Task<void>()> makeTask);
  // As above, for a job that does not suspend.
  void run(Job job);

  // Runs a host job on the main queue. Exceptions are logged.
  void onMain(Job job);
  // Calls the host now, on this thread. Exceptions are logged.
  void callHost(Job& job);

  // Wraps the function as a job for a service to call at any time; does nothing once the owner is gone.
  template <class Function>
  [[nodiscard]] auto whileAlive(Function function) const {
    return [owner = owner_, function = std::move(function)](auto... arguments) mutable {
      if (const auto alive = owner.lock()) function(arguments...);
    };
  }

  [[nodiscard]] std::stop_token stopToken() const { return stop_.get_token(); }
  [[nodiscard]] bool isClosed() const { return stop_.stop_requested(); }

  // Becomes ready when no task is running.
  [[nodiscard]] std::future<void> settled() { return tasks_->settled(); }

  // Rejects new work and cancels exchanges. Does not wait.
  void close();
  // Waits, up to the limit, until no task and no host callback is running, except the one that called this.
  void waitUntilIdle(std::chrono::milliseconds limit);

 private:
  const Platform& platform_;
  SDKLogger& logger_;
  std::weak_ptr<void> owner_;
  std::stop_source stop_;
  HostCalls hostCalls_;
  std::optional<TaskGroup> tasks_;  // set by begin()
};

}  // namespace quillon
