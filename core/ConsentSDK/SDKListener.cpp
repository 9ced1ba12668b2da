#include "core/ConsentSDK/SDKListener.h"

#include <utility>

namespace quillon {

SDKStatus SDKListener::isReady() const {
  const std::scoped_lock lock(mutex_);
  return status_;
}

void SDKListener::setReady(SDKStatus status) {
  std::vector<std::weak_ptr<Callback>> followers;
  bool isReportDue = false;
  {
    const std::scoped_lock lock(mutex_);
    if (std::exchange(status_, status) != status) followers = followers_;
    isReportDue = observer_ && reported_ != status;
    if (isReportDue) {
      reported_ = status;
      reports_.push_back({observer_, status});
    }
  }
  if (isReportDue) onMain_([this] { deliverNext(); });
  for (auto& follower : followers) {
    onMain_([follower = std::move(follower), status] {
      if (const auto callback = follower.lock()) (*callback)(status);
    });
  }
}

// One job per report, so that reports keep the order of the changes.
void SDKListener::deliverNext() {
  std::shared_ptr<Observer> observer;
  SDKStatus status;
  {
    const std::scoped_lock lock(mutex_);
    if (reports_.front().observer == observer_ && !observer_->isInitialized) {
      ++observer_->heldBack;
      return;
    }
    observer = std::move(reports_.front().observer);
    status = reports_.front().status;
    reports_.pop_front();
    if (observer != observer_) return;
  }
  observer->callback(status);
}

// The observer first gets the current status, whatever reports are queued, and then only changes from it.
void SDKListener::observe(Callback callback) {
  const auto observer = std::make_shared<Observer>(std::move(callback));
  SDKStatus present;
  {
    const std::scoped_lock lock(mutex_);
    observer_ = observer;
    present = reported_ = status_;
  }
  const std::shared_ptr<void> initialized(nullptr, [this, observer](void*) {
    int heldBack = 0;
    {
      const std::scoped_lock lock(mutex_);
      observer->isInitialized = true;
      heldBack = observer->heldBack;
    }
    for (int i = 0; i < heldBack; ++i) onMain_([this] { deliverNext(); });
  });
  observer->callback(present);
}

std::shared_ptr<void> SDKListener::follow(Callback callback) {
  auto follower = std::make_shared<Callback>(std::move(callback));
  const std::scoped_lock lock(mutex_);
  std::erase_if(followers_, [](const auto& earlier) { return earlier.expired(); });
  followers_.push_back(follower);
  return follower;
}

void SDKListener::removeObserver() {
  const std::scoped_lock lock(mutex_);
  observer_.reset();
}

}  // namespace quillon
