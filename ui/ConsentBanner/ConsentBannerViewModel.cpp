#include "ui/ConsentBanner/ConsentBannerViewModel.h"

#include "core/Logger/UnitLog.h"
#include "core/Text/LocalizedTexts.h"
#include "ui/Common/Labels/Languages.h"
#include "ui/Common/Notice/Notice.h"

namespace quillon {
namespace {

using BannerResult = ConsentSDKResult<BannerConfig>;
using LogoResult = ConsentSDKResult<std::optional<EncodedImage>>;
using PromptResult = ConsentSDKResult<std::optional<SettingsPrompt>>;

}  // namespace

std::shared_ptr<ConsentBannerViewModel> ConsentBannerViewModel::make(std::shared_ptr<ScreenServices> sdk,
                                                                     std::function<void()> leave) {
  return std::make_shared<ConsentBannerViewModel>(std::move(sdk), std::move(leave));
}

ConsentBannerViewModel::ConsentBannerViewModel(std::shared_ptr<ScreenServices> sdk, std::function<void()> leave)
    : sdk_(std::move(sdk)), leave_(std::move(leave)), labelLanguage_(languageOfLabels(*sdk_)) {}

void ConsentBannerViewModel::loadBannerConfig() {
  labelLanguage_ = languageOfLabels(*sdk_);
  bannerConfigTask_ = LoadTask::startWithContent(
      sdk_, weak_from_this(),
      [](ScreenContent content, ScreenServices& sdk) {
        std::string notice = bannerNotice(content, sdk);
        if (!notice.empty()) notice = sdk.keepNotice(std::move(notice));
        return std::pair(std::move(content), std::move(notice));
      },
      [](ConsentBannerViewModel& model, std::pair<ScreenContent, std::string> shown) {
        auto& [loaded, notice] = shown;
        model.notice_ = std::move(notice);
        if (!loaded.banner) {
          model.bannerConfigResult.set(
              BannerResult::failure({std::string(englishLabels().text(Label::bannerUnavailable))}));
          return;
        }
        model.gcmConfig.set(loaded.configuration->gcmConfig);
        model.bannerConfig.set(loaded.banner);
        model.bannerConfigResult.set(BannerResult::success(std::move(*loaded.banner)));
      });
  bannerConfigResult.set(BannerResult::loading());
}

void ConsentBannerViewModel::loadCompanyLogo() {
  companyLogoTask_ = LoadTask::startWithContent(
      sdk_, weak_from_this(),
      [](const ScreenContent& content, ScreenServices& sdk) -> std::optional<EncodedImage> {
        std::optional<std::string> logo;
        if (content.banner) logo = content.banner->companyLogo;
        if ((!logo || logo->empty()) && content.configuration) logo = content.configuration->logoBase64;
        return logo && !logo->empty() ? imageFromBase64(*logo, sdk.logger()) : std::nullopt;
      },
      [](ConsentBannerViewModel& model, std::optional<EncodedImage> image) {
        model.companyLogoResult.set(LogoResult::success(std::move(image)));
      });
  companyLogoResult.set(LogoResult::loading());
}

void ConsentBannerViewModel::loadSettingsPrompt() {
  settingsPromptTask_ = LoadTask::startWithContent(
      sdk_, weak_from_this(),
      [](const ScreenContent& content, ScreenServices&) {
        return content.configuration ? content.configuration->settingPrompt : std::nullopt;
      },
      [](ConsentBannerViewModel& model, std::optional<SettingsPrompt> prompt) {
        model.settingsPromptResult.set(
            prompt ? PromptResult::success(std::move(prompt))
                   : PromptResult::failure({std::string(englishLabels().text(Label::settingsPromptUnavailable))}));
      });
  settingsPromptResult.set(PromptResult::loading());
}

void ConsentBannerViewModel::appeared() {
  const auto& banner = bannerConfig.get();
  if (banner && banner->recordConsentUponAppStart.value_or(false)) recordDefaultExplicitConsents();
}

void ConsentBannerViewModel::perform(BannerAction action) {
  const auto link = [this](std::optional<std::string> BannerConfig::* address) {
    const auto& banner = bannerConfig.get();
    sdk_->openLink(banner ? ((*banner).*address).value_or("") : "");
  };
  switch (action) {
    case BannerAction::accept:
    case BannerAction::reject:
      sdk_->answer(action == BannerAction::accept, notice_);
      leave();
      break;
    case BannerAction::close:
      recordDefaultExplicitConsents();
      leave();
      break;
    case BannerAction::openPreferenceCenter:
      sdk_->presentPreferenceCenter();
      break;
    case BannerAction::openPrivacyNotice:
      link(&BannerConfig::privacyNoticeLink);
      break;
    case BannerAction::openDSRPortal:
      link(&BannerConfig::dsrPortalLink);
      break;
  }
}

void ConsentBannerViewModel::leave() const {
  if (leave_) return leave_();
  sdk_->dismissTopMost();
}

void ConsentBannerViewModel::openLink(const std::string& link) {
  sdk_->openLink(link);
}

void ConsentBannerViewModel::recordDefaultExplicitConsents() {
  if (sdk_->recordDefaults(notice_)) return;
  UnitLog(sdk_->logger(), unit::consentBanner)(LogLevel::error,
                                               "Something went wrong while recording default constents explicitly.",
                                               "recordDefaultExplicitConsents()");
}

std::string ConsentBannerViewModel::label(Label label) const {
  return labelText(label, bannerConfig.get(), labelLanguage_).text;
}

std::string ConsentBannerViewModel::joined(Label pattern, std::string first, std::string second) const {
  return quillon::joined(pattern, std::move(first), std::move(second), bannerConfig.get(), labelLanguage_);
}

std::string ConsentBannerViewModel::text(const std::optional<LocalizedText>& text) const {
  return text ? textIn(sdk_->language(), *text) : std::string();
}

std::string ConsentBannerViewModel::text(BannerAction action) const {
  return textOn(action, bannerConfig.get(), sdk_->language(), labelLanguage_);
}

}  // namespace quillon
