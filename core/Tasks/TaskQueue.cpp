#include "core/Tasks/TaskQueue.h"

#include <deque>
#include <mutex>
#include <utility>

#include "core/Tasks/TaskEvent.h"

namespace quillon {

struct TaskQueue::Line {
  std::mutex mutex;                              // guards the member below
  std::deque<std::shared_ptr<TaskEvent>> turns;  // the first has come

  void join(const std::shared_ptr<TaskEvent>& turn) {
    const std::scoped_lock lock(mutex);
    turns.push_back(turn);
    if (turns.size() == 1) turn->happen();
  }

  // Also before its turn has come, when the task is dropped.
  void leave(const std::shared_ptr<TaskEvent>& turn) {
    std::shared_ptr<TaskEvent> next;
    {
      const std::scoped_lock lock(mutex);
      std::erase(turns, turn);
      if (!turns.empty()) next = turns.front();
    }
    if (next) next->happen();
  }
};

TaskQueue::TaskQueue() : line_(std::make_shared<Line>()) {}

Task<TaskQueue::Turn> TaskQueue::enter() {
  const auto turn = std::make_shared<TaskEvent>();
  line_->join(turn);
  Turn place(nullptr, [line = line_, turn](void*) { line->leave(turn); });
  co_await turn->happens();
  co_return place;
}

}  // namespace quillon
