#include "core/Banner/BannerState.h"
#include "core/ConsentSDK/Screens.h"
#include "core/Logger/UnitLog.h"
#include "core/Permissions/PermissionManager.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"

namespace quillon {

bool Screens::isBannerDue() {
  const auto inForce = s_.loader.inForce();
  if (!inForce) return false;
  const PurposeManager purposes = s_.loader.purposes(inForce->configuration);
  bool due = false;
  const bool stored = s_.store.transact([&](StoreTransaction& transaction) {
    const BannerState state = bannerState(transaction, *s_.platform.clock, purposes.areSettledBySignal(transaction));
    due = state.isDue();
    if (state.promotesDefaults) transaction.setGivenType(GivenType::explicitly);
    if (transaction.integer(key::bannerShownDate, now()) > now()) {
      // The clock was set back since. Counting from now, the interval does end.
      transaction.set(key::bannerShownDate, now());
    }
    if (!due) return;
    transaction.set(key::isBannerPresent, true);
    transaction.set(key::bannerShownDate, now());
  });
  if (stored || !due) return due;
  return !isShownUnstored_.exchange(true);
}

BannerExplanation Screens::explainBanner() {
  const auto entries = s_.store.snapshot();
  const StoredValues stored(*entries);
  const auto inForce = s_.loader.inForce();
  const PurposeManager purposes = s_.loader.purposes(inForce ? inForce->configuration : nullptr);
  return quillon::explainBanner(stored, *s_.platform.clock, inForce != nullptr, purposes.areSettledBySignal(stored),
                                purposes.hasDecisions(stored));
}

void Screens::withPresenter(Show act) {
  if (!s_.platform.screens) return;
  onMain([this, screens = s_.platform.screens, act = std::move(act)] {
    if (const auto self = self_.lock()) act(*screens, self);
  });
}

void Screens::present(std::string_view operation, Show show) {
  if (!s_.platform.screens) {
    const std::string_view mistake =
        s_.platform.areScreensLinked
            ? "A user interface is linked but not configured, nothing is shown: call quillon::configureQtQuick() in "
              "place of quillon::configure(), before the first use"
            : "No user interface is linked, nothing is shown: link quillon::qtquick and call "
              "quillon::configureQtQuick() before the first use";
    UnitLog(s_.logger, unit::screens)(LogLevel::error, mistake, operation);
    return;
  }
  withPresenter(std::move(show));
}

void Screens::presentBanner() {
  // In the background, because isBannerDue() writes to the store. Without screens the banner must stay due.
  s_.work.run([this] {
    if (!s_.platform.screens || isBannerDue()) {
      present("presentBanner()", [](ScreenPresenter& screens, const auto& self) { screens.presentBanner(self); });
    }
  });
}

void Screens::presentPreferenceCenter() {
  present("presentPreferenceCenter()",
          [](ScreenPresenter& screens, const auto& self) { screens.presentPreferenceCenter(self); });
}

void Screens::presentSettingPrompt(VantariKey permission, Offer offer) {
  s_.work.start([this, permission = std::move(permission), offer]() -> Task<void> {
    if (!co_await offersSettingsPrompt(permission, offer)) co_return;
    present("presentSettingPrompt(permissionId:)", [permission](ScreenPresenter& screens, const auto& self) {
      screens.presentSettingsPrompt(self, permission);
    });
  });
}

void Screens::openLink(std::string link) {
  present("openLink(link:)",
          [link = std::move(link)](ScreenPresenter& screens, const auto& self) { screens.presentWebView(self, link); });
}

void Screens::dismissTopMost() {
  withPresenter([](ScreenPresenter& screens, const auto&) { screens.dismissTopMost(); });
}

void Screens::dismissBanner() {
  withPresenter([](ScreenPresenter& screens, const auto& self) { screens.dismissBanner(self); });
  std::vector<std::weak_ptr<std::function<void()>>> followers;
  {
    const std::scoped_lock lock(mutex_);
    followers = dismissalFollowers_;
  }
  for (auto& follower : followers) {
    onMain([follower = std::move(follower)] {
      if (const auto dismissed = follower.lock()) (*dismissed)();
    });
  }
}

void Screens::openSystemSettings() {
  withPresenter([](ScreenPresenter& screens, const auto&) { screens.openSystemSettings(); });
}

Task<bool> Screens::offersSettingsPrompt(VantariKey permission, Offer offer) {
  const ConfigurationPointer configuration = s_.loader.current();
  const auto banner = co_await s_.loader.bannerFor(configuration);
  const auto entries = s_.store.snapshot();
  const StoredValues stored(*entries);
  if (!configuration || !banner || !banner->shouldShowSettingsPrompt.value_or(false)) co_return false;
  if (offer == Offer::unlessClosedBefore && stored.boolean(key::hasShownSettingsPrompt)) co_return false;
  co_return stored.boolean(key::isSettingsPromptEnabled) && hasSettingsPrompt(*configuration, permission);
}

void Screens::load(std::function<Job(ScreenContent)> prepare) {
  s_.work.start([this, prepare = std::move(prepare)]() -> Task<void> {
    ScreenContent content;
    content.configuration = s_.loader.current();
    content.banner = co_await s_.loader.bannerFor(content.configuration);
    content.place = s_.location.known(s_.sessions.current()).value_or("");
    s_.theme.configureColors(content.banner ? content.banner->customPaletteTheme : std::nullopt);
    if (auto job = prepare(std::move(content))) onMain(std::move(job));
  });
}

std::vector<Purpose> Screens::purposes() {
  return s_.loader.purposes(s_.loader.current()).purposesWithConsents();
}

std::vector<AppPermission> Screens::permissions() {
  auto permissions = s_.loader.permissions(s_.loader.current()).permissionsWithConsents();
  if (!StoredValues(*s_.store.snapshot()).boolean(key::isSettingsPromptEnabled)) {
    for (AppPermission& permission : permissions) permission.isSettingsPromptEnabled = false;
  }
  return permissions;
}

bool Screens::run(DecisionRecorder::FollowUp followUp) {
  if (!followUp) return false;
  s_.work.start([followUp = std::move(followUp)]() mutable -> Task<void> { co_await followUp(); });
  return true;
}

void Screens::run(std::move_only_function<Job()> work) {
  s_.work.run([this, work = std::move(work)]() mutable {
    if (auto job = work()) onMain(std::move(job));
  });
}

void Screens::closeSettingsPrompt() {
  s_.store.set(key::hasShownSettingsPrompt, true);
}

std::shared_ptr<void> Screens::shown(ScreenKind screen) {
  s_.events.screens.notify({screen, true, now()});
  return std::shared_ptr<void>(this, [this, alive = self_, screen](void*) {
    const auto self = alive.lock();
    if (!self) return;
    s_.events.screens.notify({screen, false, now()});
    // A process may run for months: a closed banner must be able to reappear.
    if (screen == ScreenKind::banner) s_.store.set(key::isBannerPresent, false);
  });
}

std::optional<ConsentSDKOptions> Screens::options() const {
  const auto session = s_.sessions.current();
  return session ? std::optional(session->options) : std::nullopt;
}

std::shared_ptr<void> Screens::followStatus(std::function<void(SDKStatus)> changed) {
  return s_.events.readiness.follow(std::move(changed));
}

std::shared_ptr<void> Screens::followBannerDismissal(std::function<void()> dismissed) {
  auto follower = std::make_shared<std::function<void()>>(std::move(dismissed));
  const std::scoped_lock lock(mutex_);
  std::erase_if(dismissalFollowers_, [](const auto& earlier) { return earlier.expired(); });
  dismissalFollowers_.push_back(follower);
  return follower;
}

std::unique_ptr<Timer> Screens::after(std::chrono::milliseconds delay, std::function<void()> job) {
  return s_.platform.clock->after(delay, s_.work.whileAlive([this, job = std::move(job)] { onMain(job); }));
}

}  // namespace quillon
