#include "platform/parts/SuiteObservers.h"

#include <algorithm>
#include <utility>

#include "platform/parts/CallGate.h"
#include "platform/parts/Contained.h"

namespace quillon {

struct SuiteObservers::Observer {
  std::function<void()> changed;
  CallGate gate;
};

class SuiteObservers::Subscription : public SuiteSubscription {
 public:
  explicit Subscription(std::shared_ptr<Observer> observer) : observer_(std::move(observer)) {}
  ~Subscription() override { observer_->gate.close(); }

 private:
  std::shared_ptr<Observer> observer_;
};

std::unique_ptr<SuiteSubscription> SuiteObservers::add(std::function<void()> changed) {
  const auto observer = std::make_shared<Observer>(std::move(changed));
  auto subscription = std::make_unique<Subscription>(observer);
  const std::lock_guard lock(mutex_);
  std::erase_if(observers_, [](const auto& known) { return known.expired(); });
  observers_.push_back(observer);
  return subscription;
}

void SuiteObservers::notify() noexcept {
  contained([this] {
    std::vector<std::weak_ptr<Observer>> told;
    {
      const std::lock_guard lock(mutex_);
      told = observers_;
    }
    for (const auto& known : told) {
      if (const auto observer = known.lock()) observer->gate.pass([&] { contained(observer->changed); });
    }
  });
}

bool SuiteObservers::empty() const noexcept {
  const std::lock_guard lock(mutex_);
  return std::ranges::all_of(observers_, [](const auto& known) { return known.expired(); });
}

}  // namespace quillon
