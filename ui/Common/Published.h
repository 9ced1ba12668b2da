// Observable state of a view model.
#pragma once

#include <cassert>
#include <cstdint>
#include <functional>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

namespace quillon {

// Ends the observation when dropped, also from within the observer.
class [[nodiscard]] Observation {
 public:
  Observation() = default;
  explicit Observation(std::shared_ptr<void> registration) : registration_(std::move(registration)) {}

 private:
  std::shared_ptr<void> registration_;
};

// A value that announces every change before it is made: observers are called with the value to come while the present
// one can still be read. For the main queue only, which must be one thread: the one that made it.
//
// Observers may do anything meanwhile: end observations, add some (which hear the next change), release the object that
// owns this value, or change the value themselves. The last takes precedence: the change that was being announced is
// dropped, and observers that have not heard of it hear only of the newer one.
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

  // Announces also a value that equals the present one.
  void set(Value next) {
    assert(state_->isOwningThread());
    // The owner may be released by an observer: from here on only what is held locally is touched.
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
    std::uint64_t change = 0;  // number of the newest change
    const std::thread::id thread = std::this_thread::get_id();
  };
  const std::shared_ptr<State> state_;
};

}  // namespace quillon
