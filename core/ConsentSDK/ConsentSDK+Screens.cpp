// The screens: which are shown, and when.
#include "core/ConsentSDK/ConsentSDKCore.h"
#include "core/Logger/UnitLog.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"

namespace quillon {
namespace {

constexpr std::string_view sourceFile = "ConsentSDK/ConsentSDK+Screens";

}  // namespace

void ConsentSDK::Core::present(std::string_view operation, std::function<void(ScreenPresenter&)> show) {
  if (!platform.screens) {
    UnitLog(logger, sourceFile)(LogLevel::warning, "No user interface is linked, nothing is shown", operation);
    return;
  }
  withScreens(std::move(show));
}

void ConsentSDK::Core::withScreens(std::function<void(ScreenPresenter&)> act) {
  if (!platform.screens) return;
  onMain([screens = platform.screens, act = std::move(act)] { act(*screens); });
}

void ConsentSDK::Core::presentBanner() {
  // In the background, since the banner's turn is written to the store. Without screens it must stay due.
  tasks->start([core = shared_from_this()]() -> Task<void> {
    if (!core->platform.screens || core->isBannerDue()) {
      core->present("presentBanner()", [core](ScreenPresenter& screens) { screens.presentBanner(core); });
    }
    co_return;
  });
}

void ConsentSDK::Core::presentPreferenceCenter() {
  present("presentPreferenceCenter()",
          [core = shared_from_this()](ScreenPresenter& screens) { screens.presentPreferenceCenter(core); });
}

void ConsentSDK::Core::presentSettingPrompt(VantariKey permission, Offer offer) {
  tasks->start([core = shared_from_this(), permission = std::move(permission), offer]() -> Task<void> {
    if (!co_await core->offersSettingsPrompt(permission, offer)) co_return;
    core->present("presentSettingPrompt(permissionId:)",
                  [core, permission](ScreenPresenter& screens) { screens.presentSettingsPrompt(core, permission); });
  });
}

void ConsentSDK::Core::openLink(std::string link) {
  present("openLink(link:)", [core = shared_from_this(), link = std::move(link)](ScreenPresenter& screens) {
    screens.presentWebView(core, link);
  });
}

Task<bool> ConsentSDK::Core::offersSettingsPrompt(VantariKey permission, Offer offer) {
  const ConfigurationPointer configuration = cache.current();
  const auto banner = co_await bannerFor(configuration);
  const auto entries = store.snapshot();
  const StoredValues stored(*entries);
  const bool wanted = banner && banner->shouldShowSettingsPrompt.value_or(false) &&
                      stored.boolean(key::isSettingsPromptEnabled) &&
                      (offer == Offer::always || !stored.boolean(key::hasShownSettingsPrompt));
  if (!wanted || !configuration->settingPrompt || !configuration->settingPrompt->permissions) co_return false;
  const auto& switches = *configuration->settingPrompt->permissions;
  const auto found = switches.find(permission.rawValue());
  co_return found != switches.end() && found->second;
}

}  // namespace quillon
