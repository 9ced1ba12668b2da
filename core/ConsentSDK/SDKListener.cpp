#include "core/ConsentSDK/SDKListener.h"

namespace quillon {

SDKStatus SDKListener::isReady() const {
  const std::scoped_lock lock(mutex_);
  return status_;
}

void SDKListener::setReady(SDKStatus status) {
  {
    const std::scoped_lock lock(mutex_);
    status_ = status;
    if (!observer_ || reported_ == status) return;
    reported_ = status;
    reports_.push_back({observer_, status});
  }
  onMain_([this] { deliverNext(); });
}

// One call for each report, so that reports keep the order of the changes whoever's call comes first.
void SDKListener::deliverNext() {
  std::shared_ptr<Observer> observer;
  SDKStatus status;
  {
    const std::scoped_lock lock(mutex_);
    observer = std::move(reports_.front().observer);
    status = reports_.front().status;
    reports_.pop_front();
    if (observer != observer_) return;
  }
  observer->callback(status);
}

void SDKListener::observe(Callback callback) {
  auto observer = std::make_shared<Observer>(std::move(callback));
  SDKStatus present;
  {
    const std::scoped_lock lock(mutex_);
    observer_ = observer;
    present = status_;
  }
  observer->callback(present);
}

void SDKListener::removeObserver() {
  const std::scoped_lock lock(mutex_);
  observer_.reset();
}

}  // namespace quillon
