// The tasks that one owner has under way.
#pragma once

#include <functional>
#include <future>
#include <memory>

#include "core/Tasks/Task.h"

namespace quillon {

// Thread-safe. Tasks may outlive the group: what they use they must keep alive themselves.
class TaskGroup {
 public:
  // Tasks run on the executor. What a task throws is handed to the function, in words, from the task's thread.
  TaskGroup(std::shared_ptr<Executor> executor, std::function<void(const char*)> onException);

  // Starts what the function returns; the function and all that it captured live until the task is over. Does nothing
  // once the group is closed. Type-erased: one instantiation of what Asio makes of a task instead of one for each call.
  void start(std::move_only_function<Task<void>()> makeTask);

  // Becomes ready as soon as no task is under way.
  std::future<void> settled();

  // No task starts from now on.
  void close();

 private:
  struct State;
  class Ticket;

  TaskExecutor executor_;
  std::shared_ptr<State> state_;
};

}  // namespace quillon
