// An in-memory device whose network serves one configuration.
#pragma once

#include <memory>
#include <string>

#include "platform/Platform.h"

namespace quillon::preview {

class PreviewDevice {
 public:
  // Every configuration request returns the document; uploads succeed and are discarded.
  PreviewDevice(std::string document, std::shared_ptr<ScreenPresenter> screens);

  const Platform& platform() const { return platform_; }

 private:
  Platform platform_;
};

}  // namespace quillon::preview
