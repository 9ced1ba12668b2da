/// @file
/// Events held back until a consent.
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

/// Limits on held events; beyond them the oldest are dropped.
struct HeldLimits {
  std::size_t count = 1000;                                         ///< number of events
  std::chrono::steady_clock::duration age = std::chrono::hours(1);  ///< of an event, since add()
  /// The current time, replaceable in tests. Default: the steady clock.
  std::function<std::chrono::steady_clock::time_point()> now = [] { return std::chrono::steady_clock::now(); };
};

/// Holds events until the user has decided on a purpose: delivers at once while the purpose is allowed, keeps events
/// while it is undecided, and drops them when it is refused.
///
/// Thread-safe. Events are delivered in order, one at a time: on the thread that calls add() while the purpose is
/// allowed, else on the main queue. `deliver` must not throw and may add events. No delivery happens after destruction.
/// The SDK must outlive this object.
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
            purposeId, [state = state_] { state->deliverAllowed(); }, [state = state_] { state->deliverAllowed(); })),
        decisions_(sdk.listenToConsents([state = state_](const Decision&) { state->deliverAllowed(); })) {}
  Held(const Held&) = delete;
  Held& operator=(const Held&) = delete;

  /// Delivers, holds or drops the event. Any thread; throws only when out of memory.
  void add(T event) {
    state_->add(std::move(event));
    state_->deliverAllowed();
  }

  /// Number of events dropped, by a refusal or a limit.
  [[nodiscard]] std::size_t dropped() const {
    const std::lock_guard lock(state_->mutex);
    return state_->dropped;
  }

  /// Number of events held.
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

    // Requires the lock.
    void dropOld(std::chrono::steady_clock::time_point now) {
      while (!events.empty() && (events.size() > limits.count || now - events.front().first > limits.age)) {
        events.pop_front();
        ++dropped;
      }
    }

    // Delivers or drops the held events. One thread at a time: a concurrent call returns at once and leaves its event
    // to that thread.
    void deliverAllowed() {
      std::unique_lock lock(mutex);
      if (std::exchange(isDelivering, true)) return;
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
      isDelivering = false;
    }

    ConsentSDK& sdk;
    const std::int64_t purposeId;
    const std::function<void(T)> deliver;
    const HeldLimits limits;
    std::mutex mutex;  // guards the members below; never held while others are called
    std::deque<std::pair<std::chrono::steady_clock::time_point, T>> events;
    std::size_t dropped = 0;
    bool isDelivering = false;
  };

  const std::shared_ptr<State> state_;
  // Destroyed first, so that nothing is delivered after destruction.
  Listening gate_;
  Listening decisions_;
};

}  // namespace quillon
