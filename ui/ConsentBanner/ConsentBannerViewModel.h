// What every consent screen shows of the configuration, and what the banner's controls do.
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

// For the main queue only. Lives as long as the screen that it is made for. A load may be started anew, above all after
// a failure.
class ConsentBannerViewModel : public std::enable_shared_from_this<ConsentBannerViewModel> {
 public:
  // The function takes the screen away once the user is done with it; without one the top-most screen is dismissed.
  static std::shared_ptr<ConsentBannerViewModel> make(std::shared_ptr<ScreenServices> sdk,
                                                      std::function<void()> leave = {});
  ConsentBannerViewModel(std::shared_ptr<ScreenServices> sdk, std::function<void()> leave);  // use make()

  Published<std::optional<BannerConfig>> bannerConfig{std::nullopt};
  Published<std::optional<GcmConfig>> gcmConfig{std::nullopt};
  Published<ConsentSDKResult<BannerConfig>> bannerConfigResult{ConsentSDKResult<BannerConfig>::none()};
  // A logo that is missing or cannot be read is a success without an image.
  Published<ConsentSDKResult<std::optional<EncodedImage>>> companyLogoResult{
      ConsentSDKResult<std::optional<EncodedImage>>::none()};
  Published<ConsentSDKResult<std::optional<SettingsPrompt>>> settingsPromptResult{
      ConsentSDKResult<std::optional<SettingsPrompt>>::none()};

  void loadBannerConfig();
  void loadCompanyLogo();
  void loadSettingsPrompt();

  // The banner is on screen: records the defaults where the configuration wants that at this point.
  void appeared();
  // Accept and reject store the answer; close, an answer that was not given, the defaults. All three dismiss the banner
  // without waiting for the device or the network. The others open a further screen.
  void perform(BannerAction action);
  // Takes the screen away.
  void leave() const;
  // Opens a link of the configuration in the in-app web view.
  void openLink(const std::string& link);

  // Records the default of every purpose without a decision and the present state of every permission, and uploads
  // them.
  void recordDefaultExplicitConsents();

  // A label in the language at the last load, or in English where we do not have that.
  std::string label(Label label) const;
  // Two texts joined by one of the patterns among the labels.
  std::string joined(Label pattern, std::string first, std::string second) const;
  // A configured text in the current language, else in English, else in the first one that it has; else empty.
  std::string text(const std::optional<LocalizedText>& text) const;
  // What stands on a button; never empty.
  std::string text(BannerAction action) const;

  const std::shared_ptr<ScreenServices>& sdk() const { return sdk_; }

 private:
  const std::shared_ptr<ScreenServices> sdk_;
  const std::function<void()> leave_;
  std::string labelLanguage_;
  std::string notice_;  // the digest of what is shown
  std::optional<LoadTask> settingsPromptTask_;
  std::optional<LoadTask> bannerConfigTask_;
  std::optional<LoadTask> companyLogoTask_;
};

}  // namespace quillon
