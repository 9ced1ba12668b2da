// A device that forgets: everything in memory, and one configuration on its network.
#pragma once

#include <memory>
#include <string>

#include "platform/Platform.h"

namespace quillon::preview {

class PreviewDevice {
 public:
  // Every configuration that is asked for is the document; uploads succeed and go nowhere.
  PreviewDevice(std::string document, std::shared_ptr<ScreenPresenter> screens);

  const Platform& platform() const { return platform_; }

 private:
  Platform platform_;
};

}  // namespace quillon::preview
