// The user interface, if linked.
#pragma once

#include <memory>
#include <string>

#include "ScreenServices.h"
#include "quillon/VantariKey.h"

namespace quillon {

// Called on the main queue only; must not block. One presenter may serve several SDKs.
class ScreenPresenter {
 public:
  virtual ~ScreenPresenter() = default;

  // The SDK a screen belongs to; kept alive by the screen.
  using Services = std::shared_ptr<ScreenServices>;

  // Each shows a screen over the application's top-most one, which holds ScreenServices::shown() while visible.
  virtual void presentBanner(Services sdk) = 0;
  virtual void presentPreferenceCenter(Services sdk) = 0;
  virtual void presentSettingsPrompt(Services sdk, const VantariKey& permission) = 0;
  virtual void presentWebView(Services sdk, const std::string& link) = 0;

  virtual void dismissTopMost() = 0;
  // Dismisses that SDK's banner, wherever it is; nothing when it is not shown.
  virtual void dismissBanner(Services sdk) = 0;
  // Opens the application's page in the system settings.
  virtual void openSystemSettings() = 0;
};

}  // namespace quillon
