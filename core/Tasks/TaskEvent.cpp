#include "core/Tasks/TaskEvent.h"

#include <utility>

#include "core/Tasks/Suspension.h"

namespace quillon {

void TaskEvent::happen() {
  std::vector<Job> waiting;
  {
    const std::scoped_lock lock(mutex_);
    happened_ = true;
    waiting.swap(waiting_);
  }
  for (auto& job : waiting) job();
}

void TaskEvent::whenItHappens(Job job) {
  {
    const std::scoped_lock lock(mutex_);
    if (!happened_) {
      waiting_.push_back(std::move(job));
      return;
    }
  }
  job();
}

Task<void> TaskEvent::happens() {
  return suspendedUntilRun([this](Job goOn) { whenItHappens(std::move(goOn)); });
}

Task<bool> TaskEvent::happensWithin(std::chrono::milliseconds limit, Clock& clock) {
  const auto first = std::make_shared<TaskEvent>();  // of the event and the end of the time
  whenItHappens([first] { first->happen(); });
  {
    // Without a timer the wait takes as long as the event does.
    const auto timer = clock.after(limit, [first] { first->happen(); });
    co_await first->happens();
  }
  const std::scoped_lock lock(mutex_);
  if (!happened_) missed_ = true;
  co_return happened_;
}

bool TaskEvent::wasMissed() const {
  const std::scoped_lock lock(mutex_);
  return missed_;
}

}  // namespace quillon
