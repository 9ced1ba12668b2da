// A clock's timers, ordered by due time. The clock passes the time in, so real and virtual clocks share it.
#pragma once

#include <chrono>
#include <memory>
#include <optional>

#include "platform/Clock.h"

namespace quillon {

// Thread-safe. Timers may outlive the queue.
class TimerQueue {
 public:
  using Time = std::chrono::nanoseconds;  // since an epoch chosen by the owner; never decreases
  using Repeat = Clock::Repeat;

  TimerQueue();
  ~TimerQueue();
  TimerQueue(const TimerQueue&) = delete;
  TimerQueue& operator=(const TimerQueue&) = delete;

  // Due `delay` after `now`, and every `delay` when repeated. The delay is within a clock's bounds.
  [[nodiscard]] std::unique_ptr<Timer> add(Time now, std::chrono::milliseconds delay, Repeat repeat, Job job);

  [[nodiscard]] std::optional<Time> nextDue() const;

  // Runs the earliest job due at `now`, on the calling thread; false when there is none. Several missed periods are one
  // run. Exceptions are contained.
  bool runNext(Time now);

 private:
  struct Entry;
  struct State;
  class Handle;

  std::shared_ptr<State> state_;
};

}  // namespace quillon
