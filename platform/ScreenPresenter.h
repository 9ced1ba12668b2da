// The user interface, when one is linked.
#pragma once

#include <string>

#include "quillon/VantariKey.h"

namespace quillon {

// Called on the main queue only; returns at once.
class ScreenPresenter {
 public:
  virtual ~ScreenPresenter() = default;

  // Each shows a screen over the application's top-most one.
  virtual void presentBanner() = 0;
  virtual void presentPreferenceCenter() = 0;
  virtual void presentSettingsPrompt(const VantariKey& permission) = 0;
  virtual void presentWebView(const std::string& link) = 0;

  virtual void dismissTopMost() = 0;
  // The application's page in the system settings.
  virtual void openSystemSettings() = 0;
};

}  // namespace quillon
