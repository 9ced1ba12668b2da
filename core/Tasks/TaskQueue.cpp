#include "core/Tasks/TaskQueue.h"

#include <deque>
#include <mutex>
#include <utility>

#include "core/Tasks/TaskEvent.h"

namespace quillon {

struct TaskQueue::Line {
  std::mutex mutex;                              // guards the member below
  std::deque<std::shared_ptr<TaskEvent>> turns;  // the first is signalled

  void join(const std::shared_ptr<TaskEvent>& turn) {
    const std::scoped_lock lock(mutex);
    turns.push_back(turn);
    if (turns.size() == 1) turn->signal();  // not awaited yet
  }

  void leave(const std::shared_ptr<TaskEvent>& turn) {
    std::shared_ptr<TaskEvent> next;
    {
      const std::scoped_lock lock(mutex);
      std::erase(turns, turn);
      if (!turns.empty()) next = turns.front();
    }
    if (next) next->signal();
  }
};

struct TaskQueue::Place::Held {
  explicit Held(std::shared_ptr<Line> where) : line(std::move(where)) { line->join(turn); }
  ~Held() { line->leave(turn); }
  Held(const Held&) = delete;
  Held& operator=(const Held&) = delete;

  const std::shared_ptr<Line> line;
  const std::shared_ptr<TaskEvent> turn = std::make_shared<TaskEvent>();
};

TaskQueue::TaskQueue() : line_(std::make_shared<Line>()) {}

TaskQueue::Place TaskQueue::join() {
  return Place(std::make_shared<Place::Held>(line_));
}

Task<void> TaskQueue::Place::turn() const {
  return held_->turn->wait();
}

}  // namespace quillon
