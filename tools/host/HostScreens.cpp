#include "tools/host/HostScreens.h"

#include <algorithm>
#include <array>
#include <boost/json/array.hpp>

namespace quillon::tools {
namespace json = boost::json;
namespace {

constexpr std::array<std::pair<BannerAction, std::string_view>, 6> actionNames{{
    {BannerAction::accept, "accept"},
    {BannerAction::reject, "reject"},
    {BannerAction::close, "close"},
    {BannerAction::openPreferenceCenter, "openPreferenceCenter"},
    {BannerAction::openPrivacyNotice, "openPrivacyNotice"},
    {BannerAction::openDSRPortal, "openDSRPortal"},
}};

std::string_view name(BannerAction action) {
  return std::ranges::find(actionNames, action, &std::pair<BannerAction, std::string_view>::first)->second;
}

std::shared_ptr<ConsentBannerViewModel> loadedBanner(ScreenPresenter::Services sdk) {
  auto model = ConsentBannerViewModel::make(std::move(sdk));
  model->loadBannerConfig();
  model->loadCompanyLogo();
  model->loadSettingsPrompt();
  return model;
}

// A screen's view model, which counts as shown while it is held.
template <class Model>
std::shared_ptr<Model> shown(std::shared_ptr<Model> model, std::shared_ptr<void> notice) {
  const auto both =
      std::make_shared<std::pair<std::shared_ptr<void>, std::shared_ptr<Model>>>(std::move(notice), model);
  return {both, model.get()};
}

class Browser : public WebSurface {
 public:
  explicit Browser(std::shared_ptr<BrowserContent> content) : content_(std::move(content)) {}

  void attach(std::weak_ptr<WebNavigationDelegate> /*delegate*/,
              std::shared_ptr<const SubresourceGate> /*gate*/) override {}
  void load(const std::string& address) override { *content_ = {address, false}; }
  void loadHtml(const std::string& /*html*/) override { *content_ = {{}, true}; }
  void reload() override {}
  void stop() override {}
  void goBack() override {}
  void goForward() override {}
  bool canGoBack() const override { return false; }
  bool canGoForward() const override { return false; }
  std::string title() const override { return {}; }
  std::string address() const override { return content_->address; }
  void runScript(const std::string& /*script*/, std::function<void(std::string)> done) override { done({}); }

 private:
  const std::shared_ptr<BrowserContent> content_;
};

// The state of a load: its name, and its error if any.
template <class Value>
json::object state(const ConsentSDKResult<Value>& result) {
  if (const auto* error = result.error()) {
    return {{"state", "failure"}, {"error", error->localizedDescription()}};
  }
  return {{"state", result.value() ? "success" : result.isLoading() ? "loading" : "none"}};
}

json::array controls(const ConsentBannerViewModel& model, const std::vector<BannerAction>& actions) {
  json::array list;
  for (const BannerAction action : actions) {
    list.push_back(
        {{"action", name(action)}, {"text", model.text(action)}, {"hint", model.label(Label::activationHint)}});
  }
  return list;
}

}  // namespace

std::optional<BannerAction> bannerAction(std::string_view name) {
  const auto found = std::ranges::find(actionNames, name, &std::pair<BannerAction, std::string_view>::second);
  return found == actionNames.end() ? std::nullopt : std::optional(found->first);
}

void HostScreens::presentBanner(Services sdk) {
  banner = shown(loadedBanner(sdk), sdk->shown(ScreenKind::banner));
}

void HostScreens::presentPreferenceCenter(Services sdk) {
  preferenceCenter =
      shown(PreferenceCenterViewModel::make(loadedBanner(sdk)), sdk->shown(ScreenKind::preferenceCenter));
  preferenceCenter->loadPurposes();
  preferenceCenter->loadPermissions();
}

void HostScreens::presentSettingsPrompt(Services sdk, const VantariKey& permission) {
  if (settingsPrompt) return;
  settingsPrompt = shown(std::make_shared<SettingsPromptViewModel>(loadedBanner(sdk), permission),
                         sdk->shown(ScreenKind::settingsPrompt));
}

void HostScreens::presentWebView(Services sdk, const std::string& link) {
  browserContent = std::make_shared<BrowserContent>();
  webView = shown(WebViewModel::make(sdk, std::make_unique<Browser>(browserContent)), sdk->shown(ScreenKind::webView));
  webView->loadURL(link);
}

void HostScreens::dismissTopMost() {
  if (webView) {
    webView.reset();
  } else if (settingsPrompt) {
    settingsPrompt.reset();
  } else if (preferenceCenter) {
    preferenceCenter.reset();
  } else {
    banner.reset();
  }
}

json::object description(const ConsentBannerViewModel& model) {
  json::object result;
  result["bannerConfig"] = state(model.bannerConfigResult.get());
  result["companyLogo"] = state(model.companyLogoResult.get());
  result["settingsPrompt"] = state(model.settingsPromptResult.get());
  if (const auto* logo = model.companyLogoResult.get().value(); logo && *logo) {
    result["companyLogo"].as_object()["width"] = (*logo)->width;
    result["companyLogo"].as_object()["height"] = (*logo)->height;
  }
  if (const auto& banner = model.bannerConfig.get()) {
    result["heading"] = model.text(banner->bannerHeading);
    result["text"] = model.text(banner->bannerText);
    const BannerButtons buttons = buttonsByComplianceType(*banner);
    result["buttons"] = controls(model, buttons.answers);
    result["links"] = controls(model, buttons.links);
    result["hasCloseButton"] = buttons.close;
  }
  json::object labels;
  for (std::size_t i = 0; i < labelKeys.size(); ++i) labels[labelKeys[i]] = model.label(static_cast<Label>(i));
  result["labels"] = std::move(labels);
  return result;
}

json::object description(const PreferenceCenterViewModel& model) {
  json::object result;
  result["purposesResult"] = state(model.purposesResult.get());
  result["permissionsResult"] = state(model.permissionsResult.get());
  json::array purposes;
  for (const Purpose& purpose : model.purposes.get()) {
    const PurposeToggle toggle = model.toggle(purpose);
    purposes.push_back({{"purposeId", purpose.purposeId ? json::value(*purpose.purposeId) : json::value()},
                        {"name", model.banner()->text(purpose.purposeName)},
                        {"isOn", toggle.isOn},
                        {"isEnabled", toggle.isEnabled},
                        {"label", toggle.label},
                        {"hint", toggle.hint}});
  }
  result["purposes"] = std::move(purposes);
  json::array permissions;
  for (const AppPermission& permission : model.permissions.get()) {
    permissions.push_back(
        {{"permission", permission.permissionId ? permission.permissionId->rawValue() : ""},
         {"consent", permission.consentStatus ? json::value(rawValue(*permission.consentStatus)) : json::value()}});
  }
  result["permissions"] = std::move(permissions);
  result["voiceOverText"] = model.voiceOverText.get();
  result["announcement"] = model.announcement.get();
  return result;
}

json::object description(const SettingsPromptViewModel& model) {
  json::object result = state(model.banner()->settingsPromptResult.get());
  result["permission"] = model.permissionId().rawValue();
  if (const auto content = model.content()) {
    result["heading"] = content->heading;
    result["message"] = content->message;
    result["settingsButton"] = content->settingsButton;
    result["notNowButton"] = content->notNowButton;
  }
  return result;
}

}  // namespace quillon::tools
