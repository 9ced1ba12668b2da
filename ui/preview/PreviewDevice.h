// A device that forgets: everything in memory, and one configuration on its network.
#pragma once

#include <filesystem>
#include <memory>

#include "platform/Platform.h"

namespace quillon::preview {

class PreviewDevice {
 public:
  // Every configuration that is asked for is the file's; uploads succeed and go nowhere.
  PreviewDevice(const std::filesystem::path& configuration, std::shared_ptr<ScreenPresenter> screens);

  const Platform& platform() const { return platform_; }

 private:
  Platform platform_;
};

}  // namespace quillon::preview
