// Lets one task at a time into a stretch of work, in the order of their coming.
#pragma once

#include <boost/asio/experimental/concurrent_channel.hpp>
#include <memory>

#include "core/Tasks/Task.h"

namespace quillon {

// Thread-safe. A task that waits holds no thread.
class TaskQueue {
 public:
  explicit TaskQueue(std::shared_ptr<Executor> executor)
      : slot_(std::make_shared<Channel>(boost::asio::any_io_executor(TaskExecutor(std::move(executor))), 1)) {}

  // Lets the next one in when it goes.
  class Turn {
   public:
    explicit Turn(std::shared_ptr<void> slot) : slot_(std::move(slot)) {}

   private:
    std::shared_ptr<void> slot_;
  };

  Task<Turn> enter();

 private:
  using Channel = boost::asio::experimental::concurrent_channel<void(boost::system::error_code)>;
  std::shared_ptr<Channel> slot_;
};

}  // namespace quillon
