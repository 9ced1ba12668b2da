#include "platform/linux/LinuxClock.h"

#include <condition_variable>
#include <mutex>
#include <utility>

#include "platform/linux/WorkerThread.h"
#include "platform/parts/TimerQueue.h"

namespace quillon {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

TimerQueue::Time monotonicNow() {
  return steady_clock::now().time_since_epoch();
}

}  // namespace

// Waits for the next timer and runs it.
class LinuxClock::Loop {
 public:
  std::unique_ptr<Timer> add(milliseconds delay, TimerQueue::Repeat repeat, Job job) {
    const std::lock_guard lock(mutex_);
    auto timer = timers_.add(monotonicNow(), delay, repeat, std::move(job));
    wake_.notify_one();
    return timer;
  }

  void run() {
    std::unique_lock lock(mutex_);
    while (!closed_) {
      const auto due = timers_.nextDue();
      if (!due) {
        wake_.wait(lock);
      } else if (*due > monotonicNow()) {
        wake_.wait_until(lock, steady_clock::time_point(*due));
      } else {
        lock.unlock();
        timers_.runNext(monotonicNow());
        lock.lock();
      }
    }
  }

  void close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    wake_.notify_one();
  }

 private:
  std::mutex mutex_;
  std::condition_variable wake_;
  bool closed_ = false;
  TimerQueue timers_;
};

LinuxClock::LinuxClock() : loop_(std::make_shared<Loop>()) {}

LinuxClock::~LinuxClock() {
  loop_->close();
}

WallTime LinuxClock::now() const {
  return std::chrono::floor<milliseconds>(std::chrono::system_clock::now());
}

WallTime LinuxClock::addMonths(WallTime time, std::int64_t months) const {
  return calendar_.addMonths(time, months);
}

std::string LinuxClock::localText(WallTime time) const {
  return calendar_.localText(time);
}

std::unique_ptr<Timer> LinuxClock::after(milliseconds delay, Job job) {
  startThread();
  return loop_->add(delay, TimerQueue::Repeat::never, std::move(job));
}

std::unique_ptr<Timer> LinuxClock::every(milliseconds period, Job job) {
  startThread();
  return loop_->add(period, TimerQueue::Repeat::always, std::move(job));
}

void LinuxClock::startThread() {
  const std::lock_guard lock(threadMutex_);
  if (!thread_) thread_ = std::make_unique<WorkerThread>("quillon-timer", [loop = loop_] { loop->run(); });
}

}  // namespace quillon
