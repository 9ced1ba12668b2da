// The real services of a Linux system.
#pragma once

#include <memory>

#include "platform/Platform.h"
#include "quillon/LinuxPlatform.h"

namespace quillon {

// A platform over new services, with the user interface if one is given, and then as the application changes it; two
// calls share nothing but the files on disk.
[[nodiscard]] Platform linuxPlatform(const LinuxOptions& options, std::shared_ptr<ScreenPresenter> screens = nullptr);

// The public configure(), with a user interface for ConsentSDK::shared().
bool configure(LinuxOptions options, std::shared_ptr<ScreenPresenter> screens);

}  // namespace quillon
