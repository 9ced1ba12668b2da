#include "tests/sim/Screens.h"

#include <utility>

namespace quillon::sim {

// A view model may still be running when its screen closes, so it is released last.
void Screens::presentBanner(Services sdk) {
  if (banner_) return;
  auto model = ConsentBannerViewModel::make(sdk, [this] { const auto gone = std::exchange(banner_, std::nullopt); });
  banner_ = Banner{model, sdk->shown(ScreenKind::banner)};
  model->loadBannerConfig();
}

void Screens::presentPreferenceCenter(Services sdk) {
  if (preferences_) return;
  auto banner =
      ConsentBannerViewModel::make(sdk, [this] { const auto gone = std::exchange(preferences_, std::nullopt); });
  auto model = PreferenceCenterViewModel::make(banner);
  preferences_ = Preferences{model, sdk->shown(ScreenKind::preferenceCenter), around_.moments.size()};
  banner->loadBannerConfig();
  model->loadPurposes();
  model->loadPermissions();
}

void Screens::presentSettingsPrompt(Services sdk, const VantariKey& /*permission*/) {
  const auto shown = sdk->shown(ScreenKind::settingsPrompt);
}

void Screens::dismissTopMost() {
  if (std::exchange(preferences_, std::nullopt)) return;
  const auto gone = std::exchange(banner_, std::nullopt);
}

void Screens::dismissBanner(Services /*sdk*/) {
  const auto gone = std::exchange(banner_, std::nullopt);
}

void Screens::tapBanner(unsigned what, ActReport& report) {
  if (!banner_) return;
  const auto model = banner_->model;
  constexpr unsigned kinds = 6;
  switch (what % kinds) {
    case 0:
    case 1:
      report.effect = Effect::answer;
      report.accepts = what % kinds == 0;
      return model->perform(report.accepts ? BannerAction::accept : BannerAction::reject);
    case 2:
      report.effect = Effect::defaults;
      return model->perform(BannerAction::close);
    case 3:
      if (!model->bannerConfig.get()) return;
      report.effect = Effect::defaults;
      return model->appeared();
    case 4:
      return model->perform(BannerAction::openPreferenceCenter);
    default:
      return model->perform(BannerAction::openPrivacyNotice);
  }
}

void Screens::tapPreferences(unsigned what, ActReport& report) {
  if (!preferences_) return;
  judge(*preferences_);
  const auto model = preferences_->model;
  constexpr unsigned kinds = 6;
  switch (what % kinds) {
    case 0:
    case 1:
      return model->tapToggle(purposes[what / kinds % purposes.size()]);
    case 2:
      return model->setAll(what / kinds % 2 == 0);
    case 3:
    case 4:
      report.effect = Effect::save;
      for (const Purpose& purpose : model->purposes.get()) {
        const auto choice = model->selectedPurposes.get().find(*purpose.purposeId);
        if (choice == model->selectedPurposes.get().end()) continue;
        report.chosen[static_cast<int>(choice->first)] = choice->second ? "granted" : "declined";
      }
      model->save();
      break;
    default:
      return model->close();
  }
}

void Screens::judge(const Preferences& preferences) const {
  for (const Purpose& purpose : preferences.model->purposes.get()) {
    const int id = static_cast<int>(*purpose.purposeId);
    const std::string status(rawValue(purpose.consentStatus.value_or(ConsentStatus::notDetermined)));
    if (id != trackedPurpose &&
        !around_.wasStored(preferences.openedAt > 0 ? preferences.openedAt - 1 : 0, id, status)) {
      around_.trail.fail(1, "the preference centre says " + status + " of purpose " + std::to_string(id));
    }
  }
}

void Screens::clear() {
  const auto preferences = std::exchange(preferences_, std::nullopt);
  const auto banner = std::exchange(banner_, std::nullopt);
}

}  // namespace quillon::sim
