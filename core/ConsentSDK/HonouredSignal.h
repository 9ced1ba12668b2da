// The privacy signal honoured by the application.
#pragma once

#include <functional>
#include <memory>
#include <mutex>

#include "core/ConsentSDK/Session.h"
#include "core/Persistance/UserDefaults/UserDefaultManager.h"
#include "core/Purposes/OptOuts.h"
#include "platform/Platform.h"

namespace quillon {

// Thread-safe. Owns the signal's mapping and passes it to the ConsentTable; queries the device's signal each time.
class HonouredSignal {
 public:
  // Both must outlive it.
  HonouredSignal(const Platform& platform, UserDefaultManager& store) : platform_(platform), store_(store) {}

  // Sets the signal's mapping, unless a later session has already set it. Null without a configuration.
  void follow(const Session& session, const MainConfiguration* configuration);

  // The opt-outs; none while no signal is honoured or on. Allocates nothing.
  [[nodiscard]] OptOuts optOuts() const;

  // Calls `changed` when the device's signal may have changed; null without such a signal. It must not block.
  [[nodiscard]] std::unique_ptr<PrivacySignalSubscription> observe(std::function<void()> changed) const;

 private:
  const Platform& platform_;
  UserDefaultManager& store_;
  mutable std::mutex mutex_;  // guards the members below; held while updating the ConsentTable, never for other calls
  std::uint64_t generation_ = 0;
  bool isGiven_ = false;                          // by the application
  std::shared_ptr<const SignalMapping> mapping_;  // null when no signal is honoured
};

}  // namespace quillon
