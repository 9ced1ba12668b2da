#include "core/Tasks/TaskGroup.h"

#include <boost/asio/co_spawn.hpp>
#include <exception>
#include <mutex>
#include <utility>
#include <vector>

namespace quillon {

struct TaskGroup::State {
  std::function<void(const char*)> onException;
  std::mutex mutex;  // guards the members below
  std::size_t underWay = 0;
  bool closed = false;
  std::vector<std::promise<void>> waiting;
};

// Held by a task until it finishes or is dropped.
class TaskGroup::Ticket {
 public:
  explicit Ticket(std::shared_ptr<State> state) : state_(std::move(state)) {}
  ~Ticket();
  Ticket(const Ticket&) = delete;
  Ticket& operator=(const Ticket&) = delete;
  void report(const std::exception_ptr& error) const;

 private:
  std::shared_ptr<State> state_;
};

TaskGroup::TaskGroup(std::shared_ptr<Executor> executor, std::function<void(const char*)> onException)
    : executor_(std::move(executor)), state_(std::make_shared<State>()) {
  state_->onException = std::move(onException);
}

void TaskGroup::start(std::move_only_function<Task<void>()> makeTask) {
  std::shared_ptr<Ticket> ticket;
  {
    const std::scoped_lock lock(state_->mutex);
    if (state_->closed) return;
    ++state_->underWay;
    ticket = std::make_shared<Ticket>(state_);
  }
  boost::asio::co_spawn(executor_, std::move(makeTask), [ticket = std::move(ticket)](const std::exception_ptr& error) {
    if (error) ticket->report(error);
  });
}

TaskGroup::Ticket::~Ticket() {
  std::vector<std::promise<void>> waiting;
  {
    const std::scoped_lock lock(state_->mutex);
    if (--state_->underWay == 0) waiting.swap(state_->waiting);
  }
  for (auto& promise : waiting) promise.set_value();
}

void TaskGroup::Ticket::report(const std::exception_ptr& error) const {
  try {
    std::rethrow_exception(error);
  } catch (const std::exception& exception) {
    state_->onException(exception.what());
  } catch (...) {
    state_->onException("unknown exception");
  }
}

std::future<void> TaskGroup::settled() {
  std::promise<void> promise;
  auto future = promise.get_future();
  const std::scoped_lock lock(state_->mutex);
  if (state_->underWay == 0) {
    promise.set_value();
  } else {
    state_->waiting.push_back(std::move(promise));
  }
  return future;
}

void TaskGroup::close() {
  const std::scoped_lock lock(state_->mutex);
  state_->closed = true;
}

}  // namespace quillon
