// The network path as the kernel's routing table tells it.
#pragma once

#include "platform/NetworkPathMonitor.h"

namespace quillon {

// Thread-safe. Satisfied when a default route exists whose link is up with a carrier; that a server can be reached is
// not implied. Each subscription has a thread of its own, which sleeps until links or routes change. Dropping a
// subscription waits for its handler when that runs on another thread at the moment.
//
// Where the kernel does not answer (a sandbox without netlink sockets, for instance) the path counts as satisfied, once
// and for good: a request that fails tells the caller more than a wrong "no network" would.
class NetlinkPathMonitor : public NetworkPathMonitor {
 public:
  std::unique_ptr<NetworkSubscription> start(std::shared_ptr<Executor> queue,
                                             std::function<void(NetworkStatus)> handler) override;
};

}  // namespace quillon
