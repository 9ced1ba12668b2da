// The privacy signal that the application wants honoured.
#pragma once

#include <functional>
#include <memory>
#include <mutex>

#include "core/ConsentSDK/Session.h"
#include "core/Purposes/OptOuts.h"
#include "platform/Platform.h"

namespace quillon {

// Thread-safe. Knows what the signal stands for; whether it is on the device is asked each time.
class HonouredSignal {
 public:
  // The platform must outlive it.
  explicit HonouredSignal(const Platform& platform) : platform_(platform) {}

  // What the signal stands for from now on, unless a later session has said so. Null: no configuration is at hand.
  void follow(const Session& session, const MainConfiguration* configuration);

  // Nothing while none is honoured, or it is off. Allocates nothing.
  [[nodiscard]] OptOuts optOuts() const;

  // Calls after the device's signal may have changed; null where there is none. The handler must not block.
  [[nodiscard]] std::unique_ptr<PrivacySignalSubscription> observe(std::function<void()> changed) const;

 private:
  const Platform& platform_;
  mutable std::mutex mutex_;  // guards the members below; never held while anything else is called
  std::uint64_t generation_ = 0;
  bool isGiven_ = false;                          // by the application
  std::shared_ptr<const SignalMapping> mapping_;  // null when no signal is honoured
};

}  // namespace quillon
