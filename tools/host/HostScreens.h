// The screens of the headless host: no pixels, but the same view models that drawn screens stand on.
#pragma once

#include <boost/json/object.hpp>
#include <memory>

#include "platform/ScreenPresenter.h"
#include "ui/Common/WebView/WebViewModel.h"
#include "ui/PreferenceCenter/PreferenceCenterViewModel.h"
#include "ui/SettingsPrompt/SettingsPromptViewModel.h"

namespace quillon::tools {

// A browser that shows nothing and fetches nothing. What it was given is written to the place that the screens keep.
struct BrowserContent {
  std::string address;  // of the page given last; empty for one without an address
  bool isBlockedPage = false;
};

// For the main queue only. Each screen is null while it is not shown.
class HostScreens : public ScreenPresenter {
 public:
  void presentBanner(Services sdk) override;
  void presentPreferenceCenter(Services sdk) override;
  void presentSettingsPrompt(Services sdk, const VantariKey& permission) override;
  void presentWebView(Services sdk, const std::string& link) override;
  void dismissTopMost() override;
  void dismissBanner(Services /*sdk*/) override { banner.reset(); }
  void openSystemSettings() override { ++systemSettingsOpened; }

  std::shared_ptr<ConsentBannerViewModel> banner;
  std::shared_ptr<PreferenceCenterViewModel> preferenceCenter;
  std::shared_ptr<SettingsPromptViewModel> settingsPrompt;
  std::shared_ptr<WebViewModel> webView;
  std::shared_ptr<BrowserContent> browserContent;
  int systemSettingsOpened = 0;
};

// What a screen shows, in words.
[[nodiscard]] boost::json::object description(const ConsentBannerViewModel& model);
[[nodiscard]] boost::json::object description(const PreferenceCenterViewModel& model);
[[nodiscard]] boost::json::object description(const SettingsPromptViewModel& model);

// A control of the banner by the name that the description gives it.
[[nodiscard]] std::optional<BannerAction> bannerAction(std::string_view name);

}  // namespace quillon::tools
