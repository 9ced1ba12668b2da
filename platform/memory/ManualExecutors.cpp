#include "platform/memory/ManualExecutors.h"

#include <deque>
#include <mutex>
#include <optional>
#include <utility>

#include "platform/parts/Contained.h"

namespace quillon {

class ManualExecutors::Queue : public Executor {
 public:
  void post(Job job) override {
    const std::lock_guard lock(mutex_);
    if (!closed_) jobs_.push_back(std::move(job));
  }

  std::size_t runUntilIdle() {
    {
      const std::lock_guard lock(mutex_);
      if (std::exchange(running_, true)) return 0;
    }
    std::size_t count = 0;
    for (auto job = take(); job; job = take()) {
      contained(*job);
      ++count;
    }
    return count;
  }

  void close() {
    std::deque<Job> dropped;  // captures are destroyed without the lock
    const std::lock_guard lock(mutex_);
    closed_ = true;
    dropped.swap(jobs_);
  }

 private:
  std::optional<Job> take() {
    const std::lock_guard lock(mutex_);
    if (jobs_.empty()) {
      running_ = false;
      return std::nullopt;
    }
    Job job = std::move(jobs_.front());
    jobs_.pop_front();
    return job;
  }

  std::mutex mutex_;
  std::deque<Job> jobs_;
  bool running_ = false;
  bool closed_ = false;
};

ManualExecutors::ManualExecutors() : queue_(std::make_shared<Queue>()) {}

ManualExecutors::~ManualExecutors() {
  queue_->close();
}

std::size_t ManualExecutors::runUntilIdle() {
  const auto queue = queue_;  // a job may drop the owner
  return queue->runUntilIdle();
}

std::shared_ptr<Executor> ManualExecutors::main() {
  return queue_;
}

std::shared_ptr<Executor> ManualExecutors::background() {
  return queue_;
}

std::shared_ptr<Executor> ManualExecutors::serial(std::string /*label*/) {
  return queue_;
}

}  // namespace quillon
