// Whether the user has asked all applications on the device for privacy.
#pragma once

#include <functional>
#include <memory>

namespace quillon {

// Dropping it ends the reports; it waits for one that is running on another thread.
class PrivacySignalSubscription {
 public:
  virtual ~PrivacySignalSubscription() = default;
};

// Thread-safe. Never throws. Nothing is asked of the device before the first call.
class PrivacySignals {
 public:
  virtual ~PrivacySignals() = default;

  // Answers at once and without an allocation, but for the first call, which may take a few milliseconds. What cannot
  // be told for now counts as on.
  virtual bool isOn() const = 0;

  // Calls back, from any thread, after the answer may have become another one. The handler must not block.
  [[nodiscard]] virtual std::unique_ptr<PrivacySignalSubscription> observe(std::function<void()> changed) = 0;
};

}  // namespace quillon
