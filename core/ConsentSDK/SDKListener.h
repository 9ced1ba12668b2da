// The live readiness, and the one who watches it.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/Executors.h"
#include "quillon/SDKStatus.h"

namespace quillon {

// Thread-safe.
class SDKListener {
 public:
  using Callback = std::function<void(SDKStatus)>;

  explicit SDKListener(std::function<void(Job)> onMain) : onMain_(std::move(onMain)) {}

  SDKStatus isReady() const;
  void setReady(SDKStatus status);

  // Calls back at once on this thread, then on the main queue for every status that differs from the one reported last.
  // Replaces an earlier observer, which is not called any more.
  void observe(Callback callback);
  void removeObserver();

  // For what must follow besides the observer: calls back on the main queue with every change from now on, until the
  // handle is dropped there.
  [[nodiscard]] std::shared_ptr<void> follow(Callback callback);

 private:
  struct Observer {
    explicit Observer(Callback call) : callback(std::move(call)) {}
    const Callback callback;
    bool isGreeted = false;  // it has been told the status of the moment when it came
    int heldBack = 0;        // reports that came before that
  };
  struct Report {
    std::shared_ptr<Observer> observer;
    SDKStatus status;
  };

  void deliverNext();

  const std::function<void(Job)> onMain_;
  mutable std::mutex mutex_;  // guards the members below
  SDKStatus status_ = SDKStatus::unavailable;
  SDKStatus reported_ = SDKStatus::unavailable;
  std::shared_ptr<Observer> observer_;
  std::vector<std::weak_ptr<Callback>> followers_;
  std::deque<Report> reports_;  // on their way to the main queue
};

}  // namespace quillon
