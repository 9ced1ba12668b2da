#include "platform/linux/LinuxClock.h"

#include <boost/asio/steady_timer.hpp>
#include <mutex>
#include <optional>
#include <utility>

#include "platform/linux/WorkPool.h"
#include "platform/parts/CallGate.h"
#include "platform/parts/Contained.h"
#include "platform/parts/TimerQueue.h"

namespace quillon {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

TimerQueue::Time monotonicNow() {
  return steady_clock::now().time_since_epoch();
}

}  // namespace

// Waits on the pool for the next due timer and runs it.
class LinuxClock::Timers : public std::enable_shared_from_this<Timers> {
 public:
  explicit Timers(std::shared_ptr<WorkLoop> loop) : loop_(std::move(loop)) {
    contained([this] { next_.emplace(loop_->context()); });
  }

  std::unique_ptr<Timer> add(milliseconds delay, Repeat repeat, Job job) {
    auto timer = queue_.add(monotonicNow(), delay, repeat, std::move(job));
    const std::lock_guard lock(mutex_);
    waitForNext();
    return timer;
  }

  void close() { gate_.close(); }

 private:
  // Requires the mutex.
  void waitForNext() {
    if (isRunning_) return;  // the running thread waits afterwards
    const auto due = queue_.nextDue();
    if (!due || (awaited_ && *awaited_ <= *due)) return;
    if (!next_) next_.emplace(loop_->context());
    next_->expires_at(steady_clock::time_point(std::chrono::duration_cast<steady_clock::duration>(*due)));
    next_->async_wait([weak = weak_from_this()](auto error) {
      const auto self = weak.lock();
      if (self && !error && !self->loop_->isClosed()) self->run();
    });
    awaited_ = due;
  }

  void run() {
    {
      const std::lock_guard lock(mutex_);
      if (std::exchange(isRunning_, true)) return;
      awaited_.reset();
    }
    for (bool ran = true; ran;) {
      ran = false;  // also when the gate is closed
      gate_.pass([&] { ran = queue_.runNext(monotonicNow()); });
    }
    const std::lock_guard lock(mutex_);
    isRunning_ = false;
    contained([this] { waitForNext(); });  // out of memory: adding the next timer waits for all
  }

  const std::shared_ptr<WorkLoop> loop_;
  TimerQueue queue_;
  CallGate gate_;
  std::mutex mutex_;  // guards the members below
  bool isRunning_ = false;
  std::optional<boost::asio::steady_timer> next_;  // needs descriptors; created later if there are none
  std::optional<TimerQueue::Time> awaited_;        // the time it waits for
};

LinuxClock::LinuxClock(std::shared_ptr<WorkPool> pool)
    : pool_(std::move(pool)), timers_(std::make_shared<Timers>(pool_->loop())) {}

LinuxClock::~LinuxClock() {
  timers_->close();
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

std::unique_ptr<Timer> LinuxClock::makeTimer(milliseconds delay, Repeat repeat, Job job) {
  return timers_->add(delay, repeat, std::move(job));
}

}  // namespace quillon
