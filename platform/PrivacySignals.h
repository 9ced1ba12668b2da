// The device's privacy signals, which the user sets for all applications.
#pragma once

#include <functional>
#include <memory>

namespace quillon {

// Destruction ends the reports and waits for one running on another thread.
class PrivacySignalSubscription {
 public:
  virtual ~PrivacySignalSubscription() = default;
};

// Thread-safe. Never throws. The device is not queried before the first call.
class PrivacySignals {
 public:
  virtual ~PrivacySignals() = default;

  // Never waits and allocates nothing, except in the first call, which may take a few milliseconds. An unknown state
  // counts as on.
  virtual bool isOn() const = 0;

  // Calls `changed` from any thread when the state may have changed. It must not block.
  [[nodiscard]] virtual std::unique_ptr<PrivacySignalSubscription> observe(std::function<void()> changed) = 0;
};

}  // namespace quillon
