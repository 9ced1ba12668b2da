#include "core/Tasks/TaskEvent.h"

#include <utility>

#include "core/Tasks/Suspension.h"

namespace quillon {

void TaskEvent::signal() {
  std::vector<Job> waiting;
  {
    const std::scoped_lock lock(mutex_);
    signalled_ = true;
    waiting.swap(waiting_);
  }
  for (auto& job : waiting) job();
}

void TaskEvent::onSignal(Job job) {
  {
    const std::scoped_lock lock(mutex_);
    if (!signalled_) {
      waiting_.push_back(std::move(job));
      return;
    }
  }
  job();
}

Task<void> TaskEvent::wait() {
  return suspendedUntilRun([this](Job resume) { onSignal(std::move(resume)); });
}

Task<bool> TaskEvent::waitFor(std::chrono::milliseconds limit, Clock& clock) {
  const auto first = std::make_shared<TaskEvent>();  // signalled by whichever comes first
  onSignal([first] { first->signal(); });
  {
    const auto timer = clock.after(limit, [first] { first->signal(); });
    co_await first->wait();
  }
  const std::scoped_lock lock(mutex_);
  if (!signalled_) timedOut_ = true;
  co_return signalled_;
}

bool TaskEvent::hasTimedOut() const {
  const std::scoped_lock lock(mutex_);
  return timedOut_;
}

}  // namespace quillon
