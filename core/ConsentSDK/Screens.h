// The screens: which are shown, and when; and what they ask of the SDK.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

#include "core/ConsentSDK/DecisionRecorder.h"
#include "core/ConsentSDK/Theme.h"
#include "platform/ScreenServices.h"

namespace quillon {

// Thread-safe. Everything that it shows is in the store.
class Screens : public ScreenServices {
 public:
  // What it calls; all must outlive it.
  struct Services : Foundation {
    ConfigurationLoader& loader;
    DecisionRecorder& recorder;
    Theme& theme;
  };
  explicit Screens(Services services) : s_(services) {}

  // Must be called once, before anything is shown. The interface shares the ownership of all services.
  void begin(std::weak_ptr<ScreenServices> self) { self_ = std::move(self); }

  // Whether the banner must be shown now; a positive answer counts as showing it. Never while no configuration is in
  // force.
  bool isBannerDue();
  // Why it is due, or is not; changes nothing.
  BannerExplanation explainBanner();

  void presentBanner();
  void presentPreferenceCenter() override;
  // When the configuration offers it for the permission, and the user has not closed it before or that does not matter.
  enum class Offer { unlessClosedBefore, always };
  void presentSettingPrompt(VantariKey permission, Offer offer);

  void load(std::function<Job(ScreenContent)> prepare) override;
  std::vector<Purpose> purposes() override;
  std::vector<AppPermission> permissions() override;
  bool answer(bool accept) override { return run(s_.recorder.answer(accept)); }
  bool save(const std::map<std::int64_t, bool>& selected) override { return run(s_.recorder.save(selected)); }
  bool recordDefaults() override { return run(s_.recorder.recordDefaults()); }
  void closeSettingsPrompt() override;
  void presentSettingPrompt(const VantariKey& permission) override { presentSettingPrompt(permission, Offer::always); }
  void openLink(std::string link) override;
  void dismissTopMost() override;
  void dismissBanner() override;
  void openSystemSettings() override;
  std::shared_ptr<void> shown(ScreenKind screen) override;
  std::string language() const override { return s_.sessions.language(); }
  ScreenFonts fonts() const override { return s_.theme.fonts(); }
  std::optional<CustomColors> colors() const override { return s_.theme.colors(); }
  std::optional<ConsentSDKOptions> options() const override;
  const HostApplication& host() const override { return *s_.platform.host; }
  SDKLogger& logger() override { return s_.logger; }
  SDKStatus status() const override { return s_.events.readiness.isReady(); }
  std::shared_ptr<void> followStatus(std::function<void(SDKStatus)> changed) override;
  std::shared_ptr<void> followBannerDismissal(std::function<void()> dismissed) override;
  void run(std::move_only_function<Job()> work) override;
  void onMain(Job job) override { s_.work.onMain(std::move(job)); }
  std::unique_ptr<Timer> after(std::chrono::milliseconds delay, std::function<void()> job) override;

 private:
  using Show = std::function<void(ScreenPresenter&, const ScreenPresenter::Services&)>;

  bool run(DecisionRecorder::FollowUp followUp);
  void present(std::string_view operation, Show show);
  // Lets the user interface do something, later on the main queue; nothing when there is none.
  void withPresenter(Show act);
  Task<bool> offersSettingsPrompt(VantariKey permission, Offer offer);
  std::int64_t now() const { return wholeSeconds(s_.platform.clock->now()); }

  const Services s_;
  std::weak_ptr<ScreenServices> self_;
  std::atomic<bool> isShownUnstored_ = false;  // the disk is full; once a process is enough then
  std::mutex mutex_;                           // guards the member below
  std::vector<std::weak_ptr<std::function<void()>>> dismissalFollowers_;
};

}  // namespace quillon
