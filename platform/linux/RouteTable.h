// What the kernel's routing tells of the way to the network.
#pragma once

#include <optional>

#include "platform/NetworkPathMonitor.h"
#include "platform/linux/FileDescriptor.h"

namespace quillon {

// Satisfied when the main table holds a default route, of either address family, whose link is up and has a carrier.
// Nothing when the kernel does not answer within two seconds.
std::optional<NetworkStatus> currentNetworkStatus();

// A socket that becomes readable when links or routes change; invalid where the kernel offers none.
FileDescriptor openRouteChanges();

// Empties that socket: what changed is asked anew, so messages that the kernel had no room for are no loss.
void discardRouteChanges(const FileDescriptor& changes);

}  // namespace quillon
