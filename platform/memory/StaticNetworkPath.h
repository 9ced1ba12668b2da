// A network path with a status set at run time.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/NetworkPathMonitor.h"
#include "platform/parts/NetworkReporter.h"

namespace quillon {

// Thread-safe. Destroying a subscription waits for its handler running on another thread.
class StaticNetworkPath : public NetworkPathMonitor {
 public:
  explicit StaticNetworkPath(NetworkStatus status = NetworkStatus::satisfied) : status_(status) {}

  // Reports a changed status to every subscriber, on its queue.
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
