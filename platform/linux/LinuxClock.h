// The system clock.
#pragma once

#include <memory>

#include "platform/Clock.h"
#include "platform/parts/Calendar.h"

namespace quillon {

class WorkPool;

// Thread-safe. Timers run on pool threads, one at a time, on the monotonic clock: they pause while the machine sleeps
// and ignore changes of the wall time. Destroying a timer, or the clock, waits for its job running on another thread;
// timers of a destroyed clock never fire.
class LinuxClock : public Clock {
 public:
  explicit LinuxClock(std::shared_ptr<WorkPool> pool);
  ~LinuxClock() override;

  WallTime now() const override;
  WallTime addMonths(WallTime time, std::int64_t months) const override;
  std::string localText(WallTime time) const override;

 protected:
  // Throws boost::system::system_error when out of descriptors.
  std::unique_ptr<Timer> makeTimer(std::chrono::milliseconds delay, Repeat repeat, Job job) override;

 private:
  class Timers;

  const Calendar calendar_{TimeZone::device};
  const std::shared_ptr<WorkPool> pool_;
  const std::shared_ptr<Timers> timers_;
};

}  // namespace quillon
