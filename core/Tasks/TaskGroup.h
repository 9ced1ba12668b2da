// The tasks that one owner has under way.
#pragma once

#include <boost/asio/co_spawn.hpp>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <vector>

#include "core/Tasks/Task.h"

namespace quillon {

// Thread-safe. Tasks may outlive the group: what they use they must keep alive themselves.
class TaskGroup {
 public:
  // Tasks run on the executor. What a task throws is handed to the function, in words, from the task's thread.
  TaskGroup(std::shared_ptr<Executor> executor, std::function<void(const char*)> onException);

  // Starts what the function returns; the function and all that it captured live until the task is over. Does nothing
  // once the group is closed.
  template <class Function>
  void start(Function makeTask) {
    auto ticket = enter();
    if (!ticket) return;
    boost::asio::co_spawn(executor_, std::move(makeTask),
                          [ticket = std::move(ticket)](const std::exception_ptr& error) {
                            if (error) ticket->report(error);
                          });
  }

  // Becomes ready as soon as no task is under way.
  std::future<void> settled();

  // No task starts from now on.
  void close();

 private:
  struct State;
  // Held by a task for as long as it is under way, also when it is dropped without having been finished.
  class Ticket {
   public:
    explicit Ticket(std::shared_ptr<State> state) : state_(std::move(state)) {}
    ~Ticket();
    Ticket(const Ticket&) = delete;
    Ticket& operator=(const Ticket&) = delete;
    void report(const std::exception_ptr& error) const;

   private:
    std::shared_ptr<State> state_;
  };

  std::shared_ptr<Ticket> enter();

  TaskExecutor executor_;
  std::shared_ptr<State> state_;
};

}  // namespace quillon
