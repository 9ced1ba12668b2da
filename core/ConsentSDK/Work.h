// What one instance has under way: tasks in the background, and calls of the application on the main queue.
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

// Thread-safe. Whatever it runs keeps the owner alive meanwhile, so a task or call may use all that the owner has.
// After close() nothing begins any more.
class Work {
 public:
  // Both must outlive it.
  Work(const Platform& platform, SDKLogger& logger) : platform_(platform), logger_(logger) {}

  // Must be called once, before anything is started.
  void begin(std::weak_ptr<void> owner);

  // Runs a task in the background. What it throws is logged.
  void start(std::move_only_function<Task<void>()> makeTask);
  // The same for a job that waits for nothing.
  void run(Job job);

  // Runs a job of the application's on the main queue, contained.
  void onMain(Job job);
  // Calls the application now, on this thread. What it throws is logged.
  void callHost(Job& job);

  // The function as a job for a service to call at any time: it does nothing once the owner is gone.
  template <class Function>
  [[nodiscard]] auto whileAlive(Function function) const {
    return [owner = owner_, function = std::move(function)](auto... arguments) mutable {
      if (const auto alive = owner.lock()) function(arguments...);
    };
  }

  [[nodiscard]] std::stop_token stopToken() const { return stop_.get_token(); }
  [[nodiscard]] bool isClosed() const { return stop_.stop_requested(); }

  // Becomes ready as soon as no task is under way.
  [[nodiscard]] std::future<void> settled() { return tasks_->settled(); }

  // Stops the intake and aborts exchanges. Does not wait.
  void close();
  // Waits until no task is under way and none of the application's callbacks runs, but for the one that this is called
  // in.
  void waitUntilQuiet(std::chrono::milliseconds limit);

 private:
  const Platform& platform_;
  SDKLogger& logger_;
  std::weak_ptr<void> owner_;
  std::stop_source stop_;
  HostCalls hostCalls_;
  std::optional<TaskGroup> tasks_;  // set by begin()
};

}  // namespace quillon
