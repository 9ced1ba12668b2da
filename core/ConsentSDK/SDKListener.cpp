#include "core/ConsentSDK/SDKListener.h"

namespace quillon {

SDKStatus SDKListener::isReady() const {
  const std::scoped_lock lock(mutex_);
  return status_;
}

void SDKListener::setReady(SDKStatus status) {
  const std::scoped_lock lock(mutex_);
  status_ = status;
  if (!observer_ || reported_ == status) return;
  reported_ = status;
  // Posted under the lock so that reports keep the order of the changes; the executor never runs a job within post.
  onMain_([this, observer = std::weak_ptr(observer_), status] {
    std::shared_ptr<Observer> current;
    {
      const std::scoped_lock inner(mutex_);
      current = observer_;
    }
    if (current && current == observer.lock()) current->callback(status);
  });
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
