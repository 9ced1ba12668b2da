// A network whose status is set by hand.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/NetworkPathMonitor.h"
#include "platform/parts/NetworkReporter.h"

namespace quillon {

// Thread-safe. Dropping a subscription waits for its handler when that runs on another thread at the moment.
class StaticNetworkPath : public NetworkPathMonitor {
 public:
  explicit StaticNetworkPath(NetworkStatus status = NetworkStatus::satisfied) : status_(status) {}

  // Reports to every subscriber, on its queue, when the status is another than before.
  void set(NetworkStatus status);

  std::unique_ptr<NetworkSubscription> start(std::shared_ptr<Executor> queue,
                                             std::function<void(NetworkStatus)> handler) override;

 private:
  class Subscription;

  std::mutex mutex_;
  NetworkStatus status_;
  std::vector<std::weak_ptr<NetworkReporter>> reporters_;
};

}  // namespace quillon
