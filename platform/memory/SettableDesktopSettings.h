// Desktop settings set at run time.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <utility>

#include "platform/DesktopSettings.h"
#include "platform/parts/ChangeObservers.h"

namespace quillon {

// Thread-safe.
class SettableDesktopSettings : public DesktopSettings {
 public:
  // Calls observers when something has changed.
  void set(const DesktopAppearance& appearance) {
    {
      const std::lock_guard lock(mutex_);
      if (std::exchange(appearance_, appearance) == appearance) return;
    }
    observers_.notify();
  }

  DesktopAppearance appearance() const override {
    const std::lock_guard lock(mutex_);
    return appearance_;
  }
  std::unique_ptr<DesktopSettingsSubscription> observe(std::function<void()> changed) override {
    return observers_.add(std::move(changed));
  }

 private:
  mutable std::mutex mutex_;  // guards the member below
  DesktopAppearance appearance_;
  ChangeObservers<DesktopSettingsSubscription> observers_;
};

}  // namespace quillon
