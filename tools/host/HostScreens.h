// The screens of the headless host: the real view models, without rendering.
#pragma once

#include <boost/json/object.hpp>
#include <memory>

#include "platform/ScreenPresenter.h"
#include "ui/Common/WebView/WebViewModel.h"
#include "ui/PreferenceCenter/PreferenceCenterViewModel.h"
#include "ui/SettingsPrompt/SettingsPromptViewModel.h"

namespace quillon::tools {

// A browser that neither renders nor fetches; it stores what it was given.
struct BrowserContent {
  std::string address;  // of the last page; empty if it has none
  bool isBlockedPage = false;
};

// Main queue only. A screen is null while it is not shown.
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

// A description of what a screen shows.
[[nodiscard]] boost::json::object description(const ConsentBannerViewModel& model);
[[nodiscard]] boost::json::object description(const PreferenceCenterViewModel& model);
[[nodiscard]] boost::json::object description(const SettingsPromptViewModel& model);

// The banner control with the name used in the description.
[[nodiscard]] std::optional<BannerAction> bannerAction(std::string_view name);

}  // namespace quillon::tools
