// The system's clock.
#pragma once

#include <memory>

#include "platform/Clock.h"
#include "platform/parts/Calendar.h"

namespace quillon {

class WorkPool;

// Thread-safe. Timers run on the pool's threads, one at a time, and count time as the monotonic clock does: not while
// the machine sleeps, and untouched by changes of the wall time. A dropped timer waits for its job when that runs on
// another thread at the moment, and so does the clock when it goes; timers of a clock that is gone never fire.
class LinuxClock : public Clock {
 public:
  explicit LinuxClock(std::shared_ptr<WorkPool> pool);
  ~LinuxClock() override;

  WallTime now() const override;
  WallTime addMonths(WallTime time, std::int64_t months) const override;
  std::string localText(WallTime time) const override;

 protected:
  // Throws boost::system::system_error when there has been no descriptor left for timers yet.
  std::unique_ptr<Timer> makeTimer(std::chrono::milliseconds delay, Repeat repeat, Job job) override;

 private:
  class Timers;

  const Calendar calendar_{TimeZone::device};
  const std::shared_ptr<WorkPool> pool_;
  const std::shared_ptr<Timers> timers_;
};

}  // namespace quillon
