#include "ui/ConsentBanner/ConsentBannerViewModel.h"

#include "core/Logger/UnitLog.h"
#include "core/Text/LocalizedTexts.h"

namespace quillon {
namespace {

constexpr std::string_view sourceFile = "ConsentBanner/ConsentBannerViewModel";

using BannerResult = ConsentSDKResult<BannerConfig>;
using LogoResult = ConsentSDKResult<std::optional<EncodedImage>>;
using PromptResult = ConsentSDKResult<std::optional<SettingsPrompt>>;

struct LoadedBanner {
  std::optional<BannerConfig> banner;
  std::optional<GcmConfig> gcm;
};

}  // namespace

std::shared_ptr<ConsentBannerViewModel> ConsentBannerViewModel::make(std::shared_ptr<ConsentSDK::Core> core,
                                                                     std::function<void()> leave) {
  return std::make_shared<ConsentBannerViewModel>(std::move(core), std::move(leave));
}

ConsentBannerViewModel::ConsentBannerViewModel(std::shared_ptr<ConsentSDK::Core> core, std::function<void()> leave)
    : core_(std::move(core)), leave_(std::move(leave)) {}

void ConsentBannerViewModel::loadBannerConfig() {
  bannerConfigTask_ = LoadTask::start(
      core_, weak_from_this(),
      [](ConsentSDK::Core& core) -> Task<LoadedBanner> {
        const auto configuration = core.cache.current();
        LoadedBanner loaded;
        loaded.banner = co_await core.bannerFor(configuration);
        if (configuration) loaded.gcm = configuration->gcmConfig;
        co_return loaded;
      },
      [](ConsentBannerViewModel& model, LoadedBanner loaded) {
        if (!loaded.banner) {
          model.bannerConfigResult.set(BannerResult::failure({"Failed to Load Banner Configuration"}));
          return;
        }
        if (loaded.banner->customPaletteTheme) model.core_->theme.registerColors(*loaded.banner->customPaletteTheme);
        model.gcmConfig.set(std::move(loaded.gcm));
        model.bannerConfig.set(loaded.banner);
        model.bannerConfigResult.set(BannerResult::success(std::move(*loaded.banner)));
      });
  bannerConfigResult.set(BannerResult::loading());
}

void ConsentBannerViewModel::loadCompanyLogo() {
  companyLogoTask_ = LoadTask::start(
      core_, weak_from_this(),
      [](ConsentSDK::Core& core) -> Task<std::optional<EncodedImage>> {
        const auto configuration = core.cache.current();
        const auto banner = co_await core.bannerFor(configuration);
        std::optional<std::string> logo;
        if (banner) logo = banner->companyLogo;
        if (!logo && configuration) logo = configuration->logoBase64;
        co_return logo ? imageFromBase64(*logo, core.logger) : std::nullopt;
      },
      [](ConsentBannerViewModel& model, std::optional<EncodedImage> image) {
        model.companyLogoResult.set(LogoResult::success(std::move(image)));
      });
  companyLogoResult.set(LogoResult::loading());
}

void ConsentBannerViewModel::loadSettingsPrompt() {
  settingsPromptTask_ = LoadTask::start(
      core_, weak_from_this(),
      [](ConsentSDK::Core& core) -> Task<std::optional<SettingsPrompt>> {
        const auto configuration = core.cache.current();
        co_return configuration ? configuration->settingPrompt : std::nullopt;
      },
      [](ConsentBannerViewModel& model, std::optional<SettingsPrompt> prompt) {
        model.settingsPromptResult.set(prompt ? PromptResult::success(std::move(prompt))
                                              : PromptResult::failure({"Failed to Load Setting Prompt"}));
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
    core_->openLink(banner ? ((*banner).*address).value_or("") : "");
  };
  switch (action) {
    case BannerAction::accept:
    case BannerAction::reject:
      core_->tasks->start([core = core_, accept = action == BannerAction::accept]() -> Task<void> {
        co_await core->acceptOrReject(accept);
      });
      leave();
      break;
    case BannerAction::close:
      recordDefaultExplicitConsents();
      leave();
      break;
    case BannerAction::openPreferenceCenter:
      core_->presentPreferenceCenter();
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
  core_->withScreens([](ScreenPresenter& screens) { screens.dismissTopMost(); });
}

void ConsentBannerViewModel::openLink(const std::string& link) {
  core_->openLink(link);
}

void ConsentBannerViewModel::recordDefaultExplicitConsents() {
  core_->tasks->start([core = core_]() -> Task<void> {
    if (co_await core->recordDefaultExplicitConsents()) co_return;
    UnitLog(core->logger, sourceFile)(LogLevel::error,
                                      "Something went wrong while recording default constents explicitly.",
                                      "recordDefaultExplicitConsents()");
  });
}

std::string ConsentBannerViewModel::label(Label label) const {
  return labelText(label, bannerConfig.get(), core_->locale.currentLanguageCode());
}

std::string ConsentBannerViewModel::text(const std::optional<LocalizedText>& text) const {
  return text ? textIn(core_->locale.currentLanguageCode(), *text) : std::string();
}

std::string ConsentBannerViewModel::text(BannerAction action) const {
  const auto configured = [this](std::optional<LocalizedText> BannerConfig::* member, Label otherwise) {
    const auto& banner = bannerConfig.get();
    const std::string words = banner ? text((*banner).*member) : std::string();
    return words.empty() ? label(otherwise) : words;
  };
  switch (action) {
    case BannerAction::accept:
      return configured(&BannerConfig::accept, Label::accept);
    case BannerAction::reject:
      return configured(&BannerConfig::reject, Label::reject);
    case BannerAction::openPreferenceCenter:
      return configured(&BannerConfig::preferenceCenterLink, Label::purposes);
    case BannerAction::openPrivacyNotice:
      return configured(&BannerConfig::privacyNoticeText, Label::privacyNotice);
    case BannerAction::openDSRPortal:
      return label(Label::dsrPortal);
    case BannerAction::close:
      break;
  }
  return label(Label::close);
}

}  // namespace quillon
