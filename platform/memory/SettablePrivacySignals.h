// A privacy signal set at run time.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <utility>

#include "platform/PrivacySignals.h"
#include "platform/parts/ChangeObservers.h"

namespace quillon {

// Thread-safe.
class SettablePrivacySignals : public PrivacySignals {
 public:
  explicit SettablePrivacySignals(bool isOn = false) : isOn_(isOn) {}

  // Calls observers when the value has changed.
  void set(bool isOn) {
    if (isOn_.exchange(isOn) != isOn) observers_.notify();
  }

  bool isOn() const override { return isOn_; }
  std::unique_ptr<PrivacySignalSubscription> observe(std::function<void()> changed) override {
    return observers_.add(std::move(changed));
  }

 private:
  std::atomic<bool> isOn_;
  ChangeObservers<PrivacySignalSubscription> observers_;
};

}  // namespace quillon
