// The network path from the kernel's routing table.
#pragma once

#include "platform/NetworkPathMonitor.h"

namespace quillon {

// Thread-safe. Satisfied when a default route exists whose link is up with a carrier; this does not imply that a server
// is reachable. Each subscription has its own thread, which sleeps until links or routes change. Destroying a
// subscription waits for its handler running on another thread.
//
// Without an answer from the kernel (such as in a sandbox without netlink sockets) the path counts as satisfied
// permanently: a failing request is more informative than a wrong "no network".
class NetlinkPathMonitor : public NetworkPathMonitor {
 public:
  std::unique_ptr<NetworkSubscription> start(std::shared_ptr<Executor> queue,
                                             std::function<void(NetworkStatus)> handler) override;
};

}  // namespace quillon
