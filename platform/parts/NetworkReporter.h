// Delivers the network status from a monitor to one subscriber.
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "platform/NetworkPathMonitor.h"
#include "platform/parts/CallGate.h"

namespace quillon {

// Thread-safe. Held by shared_ptr, since queued reports keep it alive.
class NetworkReporter : public std::enable_shared_from_this<NetworkReporter> {
 public:
  NetworkReporter(std::shared_ptr<Executor> queue, std::function<void(NetworkStatus)> handler)
      : queue_(std::move(queue)), handler_(std::move(handler)) {}

  void report(NetworkStatus status) {
    queue_->post([self = shared_from_this(), status] { self->gate_.pass([&] { self->handler_(status); }); });
  }

  // The handler is not called afterwards, not even for a queued report.
  void close() { gate_.close(); }

 private:
  std::shared_ptr<Executor> queue_;
  std::function<void(NetworkStatus)> handler_;
  CallGate gate_;
};

}  // namespace quillon
