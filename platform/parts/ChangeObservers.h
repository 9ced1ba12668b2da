// The observers of a service's changes.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/parts/CallGate.h"
#include "platform/parts/Contained.h"

namespace quillon {

// Thread-safe. `Base` is the service's subscription type.
template <class Base>
class ChangeObservers {
 public:
  [[nodiscard]] std::unique_ptr<Base> add(std::function<void()> changed) {
    auto observer = std::make_shared<Observer>();
    observer->changed = std::move(changed);
    const std::lock_guard lock(mutex_);
    observers_.push_back(observer);
    return std::make_unique<Subscription>(std::move(observer));
  }

  void notify() {
    std::vector<std::shared_ptr<Observer>> told;
    {
      const std::lock_guard lock(mutex_);
      std::erase_if(observers_, [&](const std::weak_ptr<Observer>& weak) {
        auto observer = weak.lock();
        if (observer) told.push_back(observer);
        return !observer;
      });
    }
    for (const auto& observer : told) {
      observer->gate.pass([&] { contained(observer->changed); });
    }
  }

 private:
  struct Observer {
    std::function<void()> changed;
    CallGate gate;
  };

  class Subscription : public Base {
   public:
    explicit Subscription(std::shared_ptr<Observer> observer) : observer_(std::move(observer)) {}
    ~Subscription() override { observer_->gate.close(); }

   private:
    const std::shared_ptr<Observer> observer_;
  };

  std::mutex mutex_;  // guards the member below
  std::vector<std::weak_ptr<Observer>> observers_;
};

}  // namespace quillon
