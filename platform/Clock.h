// Time: what the clock on the wall shows, calendar arithmetic, and timers. They belong together so that whoever
// substitutes the clock moves the timers with it.
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

// Whole seconds since 1970-01-01T00:00:00Z, the fraction cut off towards zero.
[[nodiscard]] constexpr std::int64_t wholeSeconds(WallTime time) noexcept {
  return std::chrono::duration_cast<std::chrono::seconds>(time.time_since_epoch()).count();
}

// Thread-safe. Dropping it cancels: no job begins afterwards, and one that runs on another thread has ended. So it must
// not be dropped while holding a lock that the job takes.
class Timer {
 public:
  virtual ~Timer() = default;
};

// Thread-safe.
class Clock {
 public:
  virtual ~Clock() = default;

  virtual WallTime now() const = 0;

  // The same day and local time that many months later; a day that the month does not have becomes its last day.
  // Months may be negative. Saturates at the ends of what WallTime holds.
  virtual WallTime addMonths(WallTime time, std::int64_t months) const = 0;

  // "yyyy-MM-dd HH:mm:ss.SSS" in the device's time zone, ASCII digits whatever the locale.
  virtual std::string localText(WallTime time) const = 0;

  // Runs the job once after the delay, on a thread of the clock's; the job must only hand work on. Any duration will
  // do: one below zero counts as zero, one beyond longestDelay as that. Null when the system has no means left for the
  // timer, such as memory or descriptors: the job is dropped, and a later call may succeed.
  template <class Rep, class Period>
  [[nodiscard]] std::unique_ptr<Timer> after(std::chrono::duration<Rep, Period> delay, Job job) noexcept {
    return start(bounded(delay), Repeat::never, std::move(job));
  }
  // Runs the job one period from now and then once every period, counted from when it was due. Periods that were
  // missed, as while the process was stopped, are made up by one run, and the next follows a period later. As after(),
  // but a period is at least a millisecond.
  template <class Rep, class Period>
  [[nodiscard]] std::unique_ptr<Timer> every(std::chrono::duration<Rep, Period> period, Job job) noexcept {
    return start(std::max(bounded(period), std::chrono::milliseconds(1)), Repeat::always, std::move(job));
  }

  // Far enough for every purpose and near enough that sums never overflow.
  static constexpr std::chrono::milliseconds longestDelay = std::chrono::years(50);

  // Rounded up, from zero to longestDelay.
  template <class Rep, class Period>
  [[nodiscard]] static constexpr std::chrono::milliseconds bounded(std::chrono::duration<Rep, Period> delay) noexcept {
    // Whole numbers could overflow already where units are compared.
    const std::chrono::duration<double, std::milli> wanted = delay;
    if (wanted.count() <= 0) return std::chrono::milliseconds(0);
    if (!(wanted < longestDelay)) return longestDelay;
    return std::chrono::ceil<std::chrono::milliseconds>(wanted);
  }

  enum class Repeat { never, always };

 protected:
  // Within the bounds above. Null or an exception when there are no means for it.
  virtual std::unique_ptr<Timer> makeTimer(std::chrono::milliseconds delay, Repeat repeat, Job job) = 0;

 private:
  std::unique_ptr<Timer> start(std::chrono::milliseconds delay, Repeat repeat, Job job) noexcept try {
    return makeTimer(delay, repeat, std::move(job));
  } catch (...) {
    return nullptr;
  }
};

}  // namespace quillon
