// The listeners of one kind of event.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "core/ConsentSDK/HostCallback.h"
#include "platform/Executors.h"
#include "quillon/Listeners.h"

namespace quillon {

// Thread-safe. Must outlive the jobs posted through `onMain`.
template <class Event>
class Listeners {
 public:
  using Call = std::function<void(const Event&)>;

  explicit Listeners(std::function<void(Job)> onMain) : onMain_(std::move(onMain)) {}

  Listening add(Call call) {
    if (!call) return {};
    const auto listener = std::make_shared<Listener>(std::move(call));
    {
      const std::scoped_lock lock(mutex_);
      listeners_.push_back(listener);
    }
    return Listening([listener] { listener->end(); });
  }

  [[nodiscard]] bool isEmpty() const {
    const std::scoped_lock lock(mutex_);
    return listeners_.empty();
  }

  void notify(Event event) { queue(std::move(event))(); }

  // Queues the event; the returned job delivers it and may call host code.
  Job queue(Event event) {
    std::size_t calls = 0;
    const auto shared = std::make_shared<const Event>(std::move(event));
    {
      const std::scoped_lock lock(mutex_);
      std::erase_if(listeners_, [](const auto& listener) { return listener->hasEnded(); });
      for (const auto& listener : listeners_) reports_.push_back({listener, shared});
      calls = listeners_.size();
    }
    return [this, calls] {
      // One job per call, so that an exception cannot prevent the others.
      for (std::size_t i = 0; i < calls; ++i) onMain_([this] { deliverNext(); });
    };
  }

 private:
  using Listener = HostCallback<const Event&>;
  struct Report {
    std::shared_ptr<Listener> listener;
    std::shared_ptr<const Event> event;
  };

  void deliverNext() {
    Report report;
    {
      const std::scoped_lock lock(mutex_);
      report = std::move(reports_.front());
      reports_.pop_front();
    }
    (*report.listener)(*report.event);
  }

  const std::function<void(Job)> onMain_;
  mutable std::mutex mutex_;  // guards the members below; never held while a listener is called
  std::vector<std::shared_ptr<Listener>> listeners_;
  std::deque<Report> reports_;  // waiting for the main queue
};

}  // namespace quillon
