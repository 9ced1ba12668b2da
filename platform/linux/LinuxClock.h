// The system's clock.
#pragma once

#include <memory>
#include <mutex>

#include "platform/Clock.h"
#include "platform/linux/WorkerThread.h"
#include "platform/parts/Calendar.h"

namespace quillon {

// Thread-safe. Timers run on one thread, started for the first of them, and count time as the monotonic clock does: not
// while the machine sleeps, and untouched by changes of the wall time. A dropped timer waits for its job when that runs
// on the clock's thread at the moment; timers of a clock that is gone never fire.
class LinuxClock : public Clock {
 public:
  LinuxClock();
  ~LinuxClock() override;

  WallTime now() const override;
  WallTime addMonths(WallTime time, std::int64_t months) const override;
  std::string localText(WallTime time) const override;
  // Throw std::system_error when the system has no thread left for the first timer.
  std::unique_ptr<Timer> after(std::chrono::milliseconds delay, Job job) override;
  std::unique_ptr<Timer> every(std::chrono::milliseconds period, Job job) override;

 private:
  class Loop;

  void startThread();

  const Calendar calendar_{TimeZone::device};
  std::shared_ptr<Loop> loop_;
  std::mutex threadMutex_;  // guards thread_
  std::unique_ptr<WorkerThread> thread_;
};

}  // namespace quillon
