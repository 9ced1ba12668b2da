// The network status from the kernel's routing table.
#pragma once

#include <optional>

#include "platform/NetworkPathMonitor.h"
#include "platform/linux/FileDescriptor.h"

namespace quillon {

// Satisfied when the main table has a default route, of either address family, whose link is up with a carrier. nullopt
// when the kernel does not answer within two seconds.
std::optional<NetworkStatus> currentNetworkStatus();

// A socket that becomes readable when links or routes change; invalid where unsupported.
FileDescriptor openRouteChanges();

// Drains the socket. Lost messages do not matter, since the caller queries the status again.
void discardRouteChanges(const FileDescriptor& changes);

}  // namespace quillon
