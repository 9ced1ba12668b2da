// The user interface, when one is linked.
#pragma once

#include <memory>
#include <string>

#include "ScreenServices.h"
#include "quillon/VantariKey.h"

namespace quillon {

// Called on the main queue only; returns at once. One presenter may serve several SDKs.
class ScreenPresenter {
 public:
  virtual ~ScreenPresenter() = default;

  // The SDK that a screen is about; kept as long as the screen lives.
  using Services = std::shared_ptr<ScreenServices>;

  // Each shows a screen over the application's top-most one. While the user sees it, it holds what
  // ScreenServices::shown() gave.
  virtual void presentBanner(Services sdk) = 0;
  virtual void presentPreferenceCenter(Services sdk) = 0;
  virtual void presentSettingsPrompt(Services sdk, const VantariKey& permission) = 0;
  virtual void presentWebView(Services sdk, const std::string& link) = 0;

  virtual void dismissTopMost() = 0;
  // Takes the banner of that SDK away, wherever it lies; nothing when it is not shown.
  virtual void dismissBanner(Services sdk) = 0;
  // The application's page in the system settings.
  virtual void openSystemSettings() = 0;
};

}  // namespace quillon
