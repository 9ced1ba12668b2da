/// @file
/// What waits for a consent.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

#include "quillon/ConsentSDK.h"

namespace quillon {

/// How much is kept, and for how long; what is older or more goes, the oldest first.
struct HeldLimits {
  std::size_t count = 1000;
  std::chrono::steady_clock::duration age = std::chrono::hours(1);
  /// The time, for tests; by default that of the machine's steady clock.
  std::function<std::chrono::steady_clock::time_point()> now = [] { return std::chrono::steady_clock::now(); };
};

/// Holds events back until the user has answered: what is handed to it is delivered at once while a purpose is allowed,
/// kept while it is not and nothing was decided about it, and dropped as soon as the answer is no.
///
/// Thread-safe. Events are delivered in their order, one at a time: on the thread that adds one while the purpose is
/// allowed, else on the main queue. `deliver` must not throw, and may add further events; nothing is delivered once the
/// object is gone. The SDK must outlive it.
///
/// @code
/// quillon::Held<std::string> events(sdk, 2, [](std::string event) { std::cout << event << "\n"; });
/// events.add("article opened");
/// @endcode
template <class T>
class Held {
 public:
  Held(ConsentSDK& sdk, std::int64_t purposeId, std::function<void(T)> deliver, HeldLimits limits = {})
      : state_(std::make_shared<State>(sdk, purposeId, std::move(deliver), std::move(limits))),
        gate_(sdk.whileAllowed(
            purposeId, [state = state_] { state->settle(); }, [state = state_] { state->settle(); })),
        decisions_(sdk.listenToConsents([state = state_](const Decision&) { state->settle(); })) {}
  Held(const Held&) = delete;
  Held& operator=(const Held&) = delete;

  void add(T event) {
    state_->add(std::move(event));
    state_->settle();
  }

  /// How many events were dropped, be it by an answer or by a limit.
  [[nodiscard]] std::size_t dropped() const {
    const std::lock_guard lock(state_->mutex);
    return state_->dropped;
  }

  /// How many wait for an answer.
  [[nodiscard]] std::size_t waiting() const {
    const std::lock_guard lock(state_->mutex);
    return state_->events.size();
  }

 private:
  struct State {
    State(ConsentSDK& of, std::int64_t purpose, std::function<void(T)> call, HeldLimits bounds)
        : sdk(of), purposeId(purpose), deliver(std::move(call)), limits(std::move(bounds)) {}

    void add(T event) {
      const auto now = limits.now();
      const std::lock_guard lock(mutex);
      events.emplace_back(now, std::move(event));
      dropOld(now);
    }

    // With the lock held.
    void dropOld(std::chrono::steady_clock::time_point now) {
      while (!events.empty() && (events.size() > limits.count || now - events.front().first > limits.age)) {
        events.pop_front();
        ++dropped;
      }
    }

    // One thread at a time delivers; another one that comes meanwhile leaves its event to it.
    void settle() {
      std::unique_lock lock(mutex);
      if (std::exchange(isSettling, true)) return;
      while (!events.empty()) {
        lock.unlock();
        const bool isAllowed = sdk.isAllowed(purposeId);
        const bool isRefused = !isAllowed && sdk.isDecided(purposeId);
        const auto now = limits.now();
        lock.lock();
        dropOld(now);
        if (isRefused) {
          dropped += events.size();
          events.clear();
        }
        if (!isAllowed || events.empty()) break;
        T event = std::move(events.front().second);
        events.pop_front();
        lock.unlock();
        deliver(std::move(event));
        lock.lock();
      }
      isSettling = false;
    }

    ConsentSDK& sdk;
    const std::int64_t purposeId;
    const std::function<void(T)> deliver;
    const HeldLimits limits;
    std::mutex mutex;  // guards the members below; never held while others are called
    std::deque<std::pair<std::chrono::steady_clock::time_point, T>> events;
    std::size_t dropped = 0;
    bool isSettling = false;
  };

  const std::shared_ptr<State> state_;
  // Dropped first, so that nothing is delivered once this is gone.
  Listening gate_;
  Listening decisions_;
};

}  // namespace quillon
