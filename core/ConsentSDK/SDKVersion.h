// The version of the installed SDK.
#pragma once

#include <optional>
#include <string>

#include "platform/HostApplication.h"

namespace quillon {

// The version of the core component, else of the user-interface component; nullopt when neither states one.
[[nodiscard]] std::optional<std::string> installedSDKVersion(const HostApplication& host);

}  // namespace quillon
