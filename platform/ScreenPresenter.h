// The user interface, when one is linked.
#pragma once

#include <memory>
#include <string>

#include "quillon/ConsentSDK.h"
#include "quillon/VantariKey.h"

namespace quillon {

// Called on the main queue only; returns at once. One presenter may serve several SDKs.
class ScreenPresenter {
 public:
  virtual ~ScreenPresenter() = default;

  using Core = std::shared_ptr<ConsentSDK::Core>;  // what the screen is about; kept as long as the screen lives

  // Each shows a screen over the application's top-most one. While the user sees it, it holds what Core::shown() gave.
  virtual void presentBanner(Core core) = 0;
  virtual void presentPreferenceCenter(Core core) = 0;
  virtual void presentSettingsPrompt(Core core, const VantariKey& permission) = 0;
  virtual void presentWebView(Core core, const std::string& link) = 0;

  virtual void dismissTopMost() = 0;
  // Takes the banner of that SDK away, wherever it lies; nothing when it is not shown.
  virtual void dismissBanner(Core core) = 0;
  // The application's page in the system settings.
  virtual void openSystemSettings() = 0;
};

}  // namespace quillon
