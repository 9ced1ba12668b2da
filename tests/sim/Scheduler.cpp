#include "tests/sim/Scheduler.h"

#include <algorithm>
#include <utility>

#include "platform/parts/Contained.h"

namespace quillon::sim {

class Scheduler::Queue : public Executor {
 public:
  Queue(std::shared_ptr<Scheduler> scheduler, int owner, int lane)
      : scheduler_(std::move(scheduler)), owner_(owner), lane_(lane) {}
  void post(Job job) override { scheduler_->post(owner_, lane_, std::move(job)); }

 private:
  const std::shared_ptr<Scheduler> scheduler_;
  const int owner_;
  const int lane_;
};

class Scheduler::Queues : public Executors {
 public:
  Queues(std::shared_ptr<Scheduler> scheduler, int owner) : scheduler_(std::move(scheduler)), owner_(owner) {}

  std::shared_ptr<Executor> main() override { return main_; }
  std::shared_ptr<Executor> background() override { return background_; }
  std::shared_ptr<Executor> serial(std::string /*label*/) override {
    return std::make_shared<Queue>(scheduler_, owner_, ++lastLane_);
  }

 private:
  static constexpr int mainLane = unordered + 1;
  const std::shared_ptr<Scheduler> scheduler_;
  const int owner_;
  const std::shared_ptr<Executor> main_ = std::make_shared<Queue>(scheduler_, owner_, mainLane);
  const std::shared_ptr<Executor> background_ = std::make_shared<Queue>(scheduler_, owner_, unordered);
  int lastLane_ = mainLane;
};

void Scheduler::post(int owner, int lane, Job job) {
  auto& list = std::ranges::find(ended_, owner) == ended_.end() ? jobs_ : dropped_;
  list.push_back({owner, lane, std::move(job)});
}

bool Scheduler::runOne(Choices* choices) {
  if (jobs_.empty()) return false;
  auto chosen = jobs_.begin() + (choices ? static_cast<std::ptrdiff_t>(choices->below(jobs_.size())) : 0);
  if (chosen->lane != unordered) {
    chosen = std::ranges::find_if(
        jobs_, [&](const Entry& entry) { return entry.owner == chosen->owner && entry.lane == chosen->lane; });
  }
  Job job = std::move(chosen->job);
  jobs_.erase(chosen);
  contained(job);
  return true;
}

bool Scheduler::hasJobsOf(int owner) const {
  return std::ranges::any_of(jobs_, [&](const Entry& entry) { return entry.owner == owner; });
}

void Scheduler::end(int owner) {
  ended_.push_back(owner);
  for (auto entry = jobs_.begin(); entry != jobs_.end();) {
    if (entry->owner != owner) {
      ++entry;
      continue;
    }
    dropped_.push_back(std::move(*entry));
    entry = jobs_.erase(entry);
  }
}

void Scheduler::bury() {
  while (!dropped_.empty()) {
    auto dropped = std::exchange(dropped_, {});  // destroyed jobs may post further ones
    dropped.clear();
  }
}

std::shared_ptr<Executors> Scheduler::executorsFor(int owner) {
  return std::make_shared<Queues>(shared_from_this(), owner);
}

}  // namespace quillon::sim
