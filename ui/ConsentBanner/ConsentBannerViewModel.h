// The view model of the banner: configuration content shared by all consent screens, and the banner's actions.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "quillon/ConsentSDKResult.h"
#include "quillon/MainConfiguration.h"
#include "ui/Common/Images/ImageFromBase64.h"
#include "ui/Common/Labels/Labels.h"
#include "ui/Common/LoadTask.h"
#include "ui/Common/Published.h"
#include "ui/ConsentBanner/ButtonsByComplianceType.h"

namespace quillon {

// Main queue only. Lives as long as its screen. Loads can be repeated, for example after a failure.
class ConsentBannerViewModel : public std::enable_shared_from_this<ConsentBannerViewModel> {
 public:
  // `leave` removes the screen after the user's action; by default the top-most screen is dismissed.
  static std::shared_ptr<ConsentBannerViewModel> make(std::shared_ptr<ScreenServices> sdk,
                                                      std::function<void()> leave = {});
  ConsentBannerViewModel(std::shared_ptr<ScreenServices> sdk, std::function<void()> leave);  // use make()

  Published<std::optional<BannerConfig>> bannerConfig{std::nullopt};
  Published<std::optional<GcmConfig>> gcmConfig{std::nullopt};
  Published<ConsentSDKResult<BannerConfig>> bannerConfigResult{ConsentSDKResult<BannerConfig>::none()};
  // A missing or unreadable logo counts as success without an image.
  Published<ConsentSDKResult<std::optional<EncodedImage>>> companyLogoResult{
      ConsentSDKResult<std::optional<EncodedImage>>::none()};
  Published<ConsentSDKResult<std::optional<SettingsPrompt>>> settingsPromptResult{
      ConsentSDKResult<std::optional<SettingsPrompt>>::none()};

  void loadBannerConfig();
  void loadCompanyLogo();
  void loadSettingsPrompt();

  // Call when the banner is shown: records the defaults if the configuration requires it at this point.
  void appeared();
  // Accept and reject store the answer, close the defaults; all three dismiss the banner without waiting for the device
  // or the network. The other actions open a screen.
  void perform(BannerAction action);
  // Removes the screen.
  void leave() const;
  // Opens a link of the configuration in the in-app web view.
  void openLink(const std::string& link);

  // Records the default of every undecided purpose and the present state of every permission, and uploads them.
  void recordDefaultExplicitConsents();

  // A label in the language of the last load, or else in English.
  std::string label(Label label) const;
  // Combines two texts with a pattern of the labels.
  std::string joined(Label pattern, std::string first, std::string second) const;
  // A configured text in the current language, else in English, else in its first language; else empty.
  std::string text(const std::optional<LocalizedText>& text) const;
  // A button's text; never empty.
  std::string text(BannerAction action) const;

  const std::shared_ptr<ScreenServices>& sdk() const { return sdk_; }

 private:
  const std::shared_ptr<ScreenServices> sdk_;
  const std::function<void()> leave_;
  std::string labelLanguage_;
  std::string notice_;  // digest of the displayed content
  std::optional<LoadTask> settingsPromptTask_;
  std::optional<LoadTask> bannerConfigTask_;
  std::optional<LoadTask> companyLogoTask_;
};

}  // namespace quillon
