// Wall time, calendar arithmetic and timers, in one interface so that a substitute clock moves its timers along.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "Job.h"

namespace quillon {

using WallTime = std::chrono::sys_time<std::chrono::milliseconds>;

// Whole seconds since 1970-01-01T00:00:00Z, truncated towards zero.
[[nodiscard]] constexpr std::int64_t wholeSeconds(WallTime time) noexcept {
  return std::chrono::duration_cast<std::chrono::seconds>(time.time_since_epoch()).count();
}

// Thread-safe. Destruction cancels: no job begins afterwards, and a job running on another thread has ended. Do not
// destroy it while holding a lock that the job takes.
class Timer {
 public:
  virtual ~Timer() = default;
};

// Thread-safe.
class Clock {
 public:
  virtual ~Clock() = default;

  virtual WallTime now() const = 0;

  // The same day and local time `months` later; a day missing in that month becomes its last day. Months may be
  // negative. Saturates at the limits of WallTime.
  virtual WallTime addMonths(WallTime time, std::int64_t months) const = 0;

  // "yyyy-MM-dd HH:mm:ss.SSS" in the device's time zone, in ASCII digits.
  virtual std::string localText(WallTime time) const = 0;

  // Runs the job once after the delay, on a thread of the clock; the job must only post work. The delay is clamped to
  // zero to longestDelay. Null, dropping the job, when the system lacks memory or descriptors; a later call may
  // succeed.
  template <class Rep, class Period>
  [[nodiscard]] std::unique_ptr<Timer> after(std::chrono::duration<Rep, Period> delay, Job job) noexcept {
    return start(bounded(delay), Repeat::never, std::move(job));
  }
  // Runs the job one period from now, then once per period, counted from its due time. Missed periods, as while the
  // process was stopped, are made up by one run, and the next follows a period later. Otherwise as after(); a period is
  // at least a millisecond.
  template <class Rep, class Period>
  [[nodiscard]] std::unique_ptr<Timer> every(std::chrono::duration<Rep, Period> period, Job job) noexcept {
    return start(std::max(bounded(period), std::chrono::milliseconds(1)), Repeat::always, std::move(job));
  }

  // Long enough for any use, short enough that sums never overflow.
  static constexpr std::chrono::milliseconds longestDelay = std::chrono::years(50);

  // Rounded up and clamped to zero to longestDelay.
  template <class Rep, class Period>
  [[nodiscard]] static constexpr std::chrono::milliseconds bounded(std::chrono::duration<Rep, Period> delay) noexcept {
    // Comparing integers of different units could overflow.
    const std::chrono::duration<double, std::milli> wanted = delay;
    if (wanted.count() <= 0) return std::chrono::milliseconds(0);
    if (!(wanted < longestDelay)) return longestDelay;
    return std::chrono::ceil<std::chrono::milliseconds>(wanted);
  }

  enum class Repeat { never, always };

 protected:
  // `delay` is within the bounds above. Returns null or throws when out of resources.
  virtual std::unique_ptr<Timer> makeTimer(std::chrono::milliseconds delay, Repeat repeat, Job job) = 0;

 private:
  std::unique_ptr<Timer> start(std::chrono::milliseconds delay, Repeat repeat, Job job) noexcept try {
    return makeTimer(delay, repeat, std::move(job));
  } catch (...) {
    return nullptr;
  }
};

}  // namespace quillon
