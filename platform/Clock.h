// Time: what the clock on the wall shows, calendar arithmetic, and timers. They belong together so that whoever
// substitutes the clock moves the timers with it.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

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

  // Runs the job once after the delay, on a thread of the clock's; the job must only hand work on.
  [[nodiscard]] virtual std::unique_ptr<Timer> after(std::chrono::milliseconds delay, Job job) = 0;
  // Runs the job one period from now and then once every period.
  [[nodiscard]] virtual std::unique_ptr<Timer> every(std::chrono::milliseconds period, Job job) = 0;
};

}  // namespace quillon
