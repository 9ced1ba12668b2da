#include "core/ConsentSDK/SDKVersion.h"

namespace quillon {

std::optional<std::string> installedSDKVersion(const HostApplication& host) {
  if (auto version = host.componentVersion("org.quillon.consent.core")) return version;
  return host.componentVersion("org.quillon.consent.ui");
}

}  // namespace quillon
