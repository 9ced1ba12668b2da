#include "testing/DeviceExecutors.h"

#include <deque>
#include <utility>

#include "platform/parts/Contained.h"

namespace quillon::testing {

class DeviceExecutors::Background : public Executor {
 public:
  void post(Job job) override {
    const std::scoped_lock lock(mutex_);
    if (closed_) return;
    jobs_.push_back(std::move(job));
    if (!busy_) changed_.notify_all();  // a running thread checks the queue itself
  }

  void run() {
    std::unique_lock lock(mutex_);
    while (true) {
      changed_.wait(lock, [this] { return closed_ || !jobs_.empty(); });
      if (closed_) return;
      Job job = std::move(jobs_.front());
      jobs_.pop_front();
      busy_ = true;
      lock.unlock();
      contained(job);
      job = nullptr;  // destroys its captures before the queue counts as idle
      lock.lock();
      busy_ = false;
      if (jobs_.empty()) changed_.notify_all();
    }
  }

  void waitUntilIdle() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return closed_ || (jobs_.empty() && !busy_); });
  }

  void close() {
    std::deque<Job> dropped;  // captures are destroyed without the lock
    const std::scoped_lock lock(mutex_);
    closed_ = true;
    dropped.swap(jobs_);
    changed_.notify_all();
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Job> jobs_;
  bool busy_ = false;
  bool closed_ = false;
};

DeviceExecutors::DeviceExecutors()
    : background_(std::make_shared<Background>()), thread_([queue = background_] { queue->run(); }) {}

DeviceExecutors::~DeviceExecutors() {
  background_->close();
  // A job of this queue may be the last owner.
  if (thread_.get_id() == std::this_thread::get_id()) {
    thread_.detach();
  } else {
    thread_.join();
  }
}

void DeviceExecutors::settle() {
  do {
    background_->waitUntilIdle();
  } while (mainQueue_.runUntilIdle() > 0);
}

std::shared_ptr<Executor> DeviceExecutors::background() {
  return background_;
}

std::shared_ptr<Executor> DeviceExecutors::serial(std::string /*label*/) {
  return background_;
}

}  // namespace quillon::testing
