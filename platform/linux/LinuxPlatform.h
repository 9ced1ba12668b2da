// The Linux platform.
#pragma once

#include <memory>

#include "platform/Platform.h"
#include "quillon/LinuxPlatform.h"

namespace quillon {

// A platform of new services, with the given user interface and the application's replacements; two platforms share
// only the files on disk.
[[nodiscard]] Platform linuxPlatform(const LinuxOptions& options, std::shared_ptr<ScreenPresenter> screens = nullptr);

// configure() with a user interface for ConsentSDK::shared().
bool configure(LinuxOptions options, std::shared_ptr<ScreenPresenter> screens);

}  // namespace quillon
