#include "platform/parts/TimerQueue.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <utility>

#include "platform/parts/CallGate.h"
#include "platform/parts/Contained.h"

namespace quillon {

struct TimerQueue::Entry {
  Time due;  // guarded by the state's mutex
  std::optional<Time> period;
  Job job;
  CallGate gate;
};

struct TimerQueue::State {
  mutable std::mutex mutex;
  std::multimap<Time, std::shared_ptr<Entry>> entries;
};

class TimerQueue::Handle : public Timer {
 public:
  Handle(std::shared_ptr<State> state, std::shared_ptr<Entry> entry)
      : state_(std::move(state)), entry_(std::move(entry)) {}
  ~Handle() override {
    entry_->gate.close();
    const std::lock_guard lock(state_->mutex);
    auto [at, end] = state_->entries.equal_range(entry_->due);
    at = std::find_if(at, end, [this](const auto& item) { return item.second == entry_; });
    if (at != end) state_->entries.erase(at);
  }

 private:
  std::shared_ptr<State> state_;
  std::shared_ptr<Entry> entry_;
};

TimerQueue::TimerQueue() : state_(std::make_shared<State>()) {}

TimerQueue::~TimerQueue() {
  std::multimap<Time, std::shared_ptr<Entry>> dropped;  // captures are destroyed without the lock
  const std::lock_guard lock(state_->mutex);
  dropped.swap(state_->entries);
}

std::unique_ptr<Timer> TimerQueue::add(Time now, std::chrono::milliseconds delay, Repeat repeat, Job job) {
  const auto entry = std::make_shared<Entry>();
  if (repeat == Repeat::always) entry->period = delay;
  entry->job = std::move(job);
  auto handle = std::make_unique<Handle>(state_, entry);
  const std::lock_guard lock(state_->mutex);
  entry->due = now + delay;
  state_->entries.emplace(entry->due, entry);
  return handle;
}

std::optional<TimerQueue::Time> TimerQueue::nextDue() const {
  const std::lock_guard lock(state_->mutex);
  if (state_->entries.empty()) return std::nullopt;
  return state_->entries.begin()->first;
}

bool TimerQueue::runNext(Time now) {
  std::shared_ptr<Entry> entry;
  {
    const std::lock_guard lock(state_->mutex);
    const auto first = state_->entries.begin();
    if (first == state_->entries.end() || first->first > now) return false;
    auto node = state_->entries.extract(first);
    entry = node.mapped();
    if (entry->period) {
      entry->due += *entry->period;  // counted from the due time, so that delays do not accumulate
      if (entry->due <= now) entry->due = now + *entry->period;
      node.key() = entry->due;
      state_->entries.insert(std::move(node));
    }
  }
  entry->gate.pass([&entry] {
    if (entry->period) {
      contained(entry->job);
    } else {
      Job once = std::move(entry->job);  // captures are destroyed after the only run
      contained(once);
    }
  });
  return true;
}

}  // namespace quillon
