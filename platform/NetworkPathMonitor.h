// Monitors whether the device has a network path.
#pragma once

#include <functional>
#include <memory>

#include "Executors.h"

namespace quillon {

enum class NetworkStatus { satisfied, unsatisfied };

// Destruction ends the reports and waits for one running on another thread.
class NetworkSubscription {
 public:
  virtual ~NetworkSubscription() = default;
};

// Thread-safe.
class NetworkPathMonitor {
 public:
  virtual ~NetworkPathMonitor() = default;

  // Reports the current status soon after the call, then every change, on the given queue.
  [[nodiscard]] virtual std::unique_ptr<NetworkSubscription> start(std::shared_ptr<Executor> queue,
                                                                   std::function<void(NetworkStatus)> handler) = 0;
};

}  // namespace quillon
