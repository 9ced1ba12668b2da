// A clock advanced by hand, with its timers.
#pragma once

#include <functional>
#include <mutex>

#include "platform/Clock.h"
#include "platform/parts/Calendar.h"
#include "platform/parts/TimerQueue.h"

namespace quillon {

// Thread-safe. Time passes only in advance().
//
//   VirtualClock clock(std::chrono::sys_days(2024y / May / 1));
//   auto timer = clock.every(60s, [] { ... });
//   clock.advance(3min);  // runs the job three times, at 60, 120 and 180 seconds
class VirtualClock : public Clock {
 public:
  explicit VirtualClock(WallTime start, TimeZone zone = TimeZone::utc);

  // Advances by `duration`, at most longestDelay: every due timer fires in time order, on the calling thread and with
  // now() at its due time, including timers started meanwhile. Concurrent calls run one after the other. afterEachTimer
  // runs after every job, to wait for the work it started before time passes.
  void advance(std::chrono::milliseconds duration, const std::function<void()>& afterEachTimer = {});

  // Shifts the wall time, as a user or a time server does; timers are unaffected.
  void jump(std::chrono::milliseconds delta);

  WallTime now() const override;
  WallTime addMonths(WallTime time, std::int64_t months) const override;
  std::string localText(WallTime time) const override;

 protected:
  std::unique_ptr<Timer> makeTimer(std::chrono::milliseconds delay, Repeat repeat, Job job) override;

 private:
  std::chrono::milliseconds elapsed() const;
  void moveTo(std::chrono::milliseconds elapsed);

  const Calendar calendar_;
  std::recursive_mutex advancing_;
  mutable std::mutex mutex_;  // guards the two members below
  WallTime wall_;
  std::chrono::milliseconds elapsed_{0};
  TimerQueue timers_;
};

}  // namespace quillon
