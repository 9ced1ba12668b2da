// The readiness status and its observer.
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

  // Calls back at once on this thread, then on the main queue with every status that differs from the last one
  // reported. Replaces the earlier observer.
  void observe(Callback callback);
  void removeObserver();

  // For internal followers: calls back on the main queue with every later change, until the handle is dropped there.
  [[nodiscard]] std::shared_ptr<void> follow(Callback callback);

 private:
  struct Observer {
    explicit Observer(Callback call) : callback(std::move(call)) {}
    const Callback callback;
    bool isInitialized = false;  // it has received its first status
    int heldBack = 0;            // reports that arrived before that
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
  std::deque<Report> reports_;  // waiting for the main queue
};

}  // namespace quillon
