// The real services of a Linux system.
#pragma once

#include "platform/Platform.h"
#include "quillon/LinuxPlatform.h"

namespace quillon {

// A platform over new services; two calls share nothing but the files on disk.
[[nodiscard]] Platform linuxPlatform(const LinuxOptions& options);

}  // namespace quillon
