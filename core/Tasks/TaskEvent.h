// Something that happens once, for which tasks wait.
#pragma once

#include <boost/asio/experimental/concurrent_channel.hpp>
#include <chrono>
#include <memory>
#include <mutex>
#include <vector>

#include "core/Tasks/Task.h"
#include "platform/Clock.h"

namespace quillon {

// Thread-safe. A task that waits holds no thread.
class TaskEvent {
 public:
  // Who waits goes on on the executor, after that time of the clock at the latest.
  TaskEvent(std::shared_ptr<Executor> executor, std::shared_ptr<Clock> clock)
      : executor_(TaskExecutor(std::move(executor))), clock_(std::move(clock)) {}

  void happen();

  // False when the time was over first.
  Task<bool> happensWithin(std::chrono::milliseconds limit);

  // Whether somebody waited for it in vain.
  [[nodiscard]] bool wasMissed() const;

 private:
  using Channel = boost::asio::experimental::concurrent_channel<void(boost::system::error_code)>;

  // Null when the system has no thread left for the clock: then the wait takes as long as the event does.
  std::unique_ptr<Timer> timerFor(std::chrono::milliseconds limit, Job job);

  const boost::asio::any_io_executor executor_;
  const std::shared_ptr<Clock> clock_;
  mutable std::mutex mutex_;  // guards the members below
  std::vector<std::shared_ptr<Channel>> waiting_;
  bool happened_ = false;
  bool missed_ = false;
};

}  // namespace quillon
