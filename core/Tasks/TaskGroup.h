// The running tasks of one owner.
#pragma once

#include <functional>
#include <future>
#include <memory>

#include "core/Tasks/Task.h"

namespace quillon {

// Thread-safe. Tasks may outlive the group, and must keep alive what they use.
class TaskGroup {
 public:
  // Tasks run on the executor. Exceptions are passed as text to `onException`, on the task's thread.
  TaskGroup(std::shared_ptr<Executor> executor, std::function<void(const char*)> onException);

  // Starts the task that the function returns; the function and its captures live until the task ends. Does nothing
  // once closed. Type-erased, so that Asio's task machinery is instantiated once.
  void start(std::move_only_function<Task<void>()> makeTask);

  // Becomes ready when no task is running.
  std::future<void> settled();

  // Prevents further tasks from starting.
  void close();

 private:
  struct State;
  class Ticket;

  TaskExecutor executor_;
  std::shared_ptr<State> state_;
};

}  // namespace quillon
