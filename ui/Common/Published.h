// Observable properties of view models.
#pragma once

#include <cassert>
#include <cstdint>
#include <functional>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

namespace quillon {

// Destruction ends the observation, even from within the observer.
class [[nodiscard]] Observation {
 public:
  Observation() = default;
  explicit Observation(std::shared_ptr<void> registration) : registration_(std::move(registration)) {}

 private:
  std::shared_ptr<void> registration_;
};

// An observable value. Observers are called before each change, with the next value, while the present one is still
// readable. Main queue only, which must be a single thread: the constructing one.
//
// Observers may end observations, add observers (called from the next change on), destroy the owner of this value, or
// set the value. Setting takes precedence: it cancels the change being announced, and observers not yet notified see
// only the newer change.
template <class Value>
class Published {
 public:
  using Observer = std::function<void(const Value& next)>;

  explicit Published(Value initial) : state_(std::make_shared<State>(std::move(initial))) {}
  Published(const Published&) = delete;
  Published& operator=(const Published&) = delete;

  // Valid until the next change.
  const Value& get() const {
    assert(state_->isOwningThread());
    return state_->value;
  }

  // Notifies observers even if the value is equal.
  void set(Value next) {
    assert(state_->isOwningThread());
    // An observer may destroy *this: only locals are used from here on.
    const std::shared_ptr<State> state = state_;
    const std::uint64_t change = ++state->change;
    const auto observers = state->observers;
    for (const auto& observer : observers) {
      const auto registered = observer.lock();
      if (!registered) continue;
      (*registered)(next);
      if (state->change != change) return;
    }
    state->value = std::move(next);
  }

  Observation observe(Observer observer) {
    assert(state_->isOwningThread());
    auto registered = std::make_shared<Observer>(std::move(observer));
    std::erase_if(state_->observers, [](const auto& earlier) { return earlier.expired(); });
    state_->observers.push_back(registered);
    return Observation(std::move(registered));
  }

 private:
  struct State {
    explicit State(Value initial) : value(std::move(initial)) {}
    bool isOwningThread() const { return std::this_thread::get_id() == thread; }

    Value value;
    std::vector<std::weak_ptr<Observer>> observers;
    std::uint64_t change = 0;  // sequence number of the latest change
    const std::thread::id thread = std::this_thread::get_id();
  };
  const std::shared_ptr<State> state_;
};

}  // namespace quillon
