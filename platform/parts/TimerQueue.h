// The timers of a clock in the order in which they are due. It has no idea of what time it is: a clock asks it for what
// is due and runs that, whether time passes by itself or is moved by hand.
#pragma once

#include <chrono>
#include <memory>
#include <optional>

#include "platform/Clock.h"

namespace quillon {

// Thread-safe. Timers may outlive the queue.
class TimerQueue {
 public:
  using Time = std::chrono::nanoseconds;  // since a moment of the owner's choice; never goes back
  using Repeat = Clock::Repeat;

  TimerQueue();
  ~TimerQueue();
  TimerQueue(const TimerQueue&) = delete;
  TimerQueue& operator=(const TimerQueue&) = delete;

  // Due `delay` after `now`, and again every `delay` when repeated. The delay is within the bounds of a clock's.
  [[nodiscard]] std::unique_ptr<Timer> add(Time now, std::chrono::milliseconds delay, Repeat repeat, Job job);

  [[nodiscard]] std::optional<Time> nextDue() const;

  // Runs the earliest job that is due at that time, on the calling thread; false when there is none. Of a repeated one
  // all that is due is one run. What the job throws is contained.
  bool runNext(Time now);

 private:
  struct Entry;
  struct State;
  class Handle;

  std::shared_ptr<State> state_;
};

}  // namespace quillon
