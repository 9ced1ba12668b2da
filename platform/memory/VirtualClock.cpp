#include "platform/memory/VirtualClock.h"

#include <utility>

namespace quillon {

using std::chrono::milliseconds;

VirtualClock::VirtualClock(WallTime start, TimeZone zone) : calendar_(zone), wall_(start) {}

void VirtualClock::advance(milliseconds duration, const std::function<void()>& afterEachTimer) {
  const std::lock_guard lock(advancing_);
  const milliseconds target = elapsed() + bounded(duration);
  for (auto due = timers_.nextDue(); due && *due <= target; due = timers_.nextDue()) {
    moveTo(std::chrono::duration_cast<milliseconds>(*due));
    if (timers_.runNext(*due) && afterEachTimer) afterEachTimer();
  }
  moveTo(target);
}

void VirtualClock::jump(milliseconds delta) {
  const std::lock_guard lock(mutex_);
  wall_ += delta;
}

WallTime VirtualClock::now() const {
  const std::lock_guard lock(mutex_);
  return wall_;
}

WallTime VirtualClock::addMonths(WallTime time, std::int64_t months) const {
  return calendar_.addMonths(time, months);
}

std::string VirtualClock::localText(WallTime time) const {
  return calendar_.localText(time);
}

std::unique_ptr<Timer> VirtualClock::makeTimer(milliseconds delay, Repeat repeat, Job job) {
  return timers_.add(elapsed(), delay, repeat, std::move(job));
}

milliseconds VirtualClock::elapsed() const {
  const std::lock_guard lock(mutex_);
  return elapsed_;
}

// A job that advances the clock may have moved it beyond this target; time never goes back.
void VirtualClock::moveTo(milliseconds elapsed) {
  const std::lock_guard lock(mutex_);
  if (elapsed <= elapsed_) return;
  wall_ += elapsed - elapsed_;
  elapsed_ = elapsed;
}

}  // namespace quillon
