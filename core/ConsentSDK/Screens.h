// Decides which screens are shown, and answers their requests.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

#include "core/ConsentSDK/DecisionRecorder.h"
#include "core/ConsentSDK/Receipts.h"
#include "core/ConsentSDK/Theme.h"
#include "core/History/NoticeArchive.h"
#include "platform/ScreenServices.h"

namespace quillon {

// Thread-safe. All durable state is in the store.
class Screens : public ScreenServices {
 public:
  // Collaborators; all must outlive it.
  struct Services : Foundation {
    ConfigurationLoader& loader;
    DecisionRecorder& recorder;
    Theme& theme;
    NoticeArchive& notices;
    const Receipts& receipts;
    const LocationLookup& location;
  };
  explicit Screens(Services services) : s_(services) {}

  // Must be called once, before anything is shown. The user interface shares ownership of all services.
  void begin(std::weak_ptr<ScreenServices> self) { self_ = std::move(self); }

  // Whether the banner must be shown now; true counts as showing it. Always false without a configuration in force.
  bool isBannerDue();
  // Why the banner is due or not; changes nothing.
  BannerExplanation explainBanner();

  void presentBanner();
  void presentPreferenceCenter() override;
  // Whether to offer a prompt that the user has closed before.
  enum class Offer { unlessClosedBefore, always };
  void presentSettingPrompt(VantariKey permission, Offer offer);

  void load(std::function<Job(ScreenContent)> prepare) override;
  std::vector<Purpose> purposes() override;
  std::vector<AppPermission> permissions() override;
  ConsentSDKResult<std::string> receipt() override { return s_.receipts.receipt({}); }
  std::shared_ptr<ReceiptIssuer> receipts() const override { return s_.platform.receipts; }
  std::shared_ptr<FileChooser> chooser() const override { return s_.platform.chooser; }
  std::string keepNotice(std::string text) override { return s_.notices.keep(std::move(text)); }
  bool answer(bool accept, const std::string& notice) override { return run(s_.recorder.answer(accept, notice)); }
  bool save(const std::map<std::int64_t, bool>& selected, const std::string& notice) override {
    return run(s_.recorder.save(selected, notice));
  }
  bool recordDefaults(const std::string& notice) override { return run(s_.recorder.recordDefaults(notice)); }
  void closeSettingsPrompt() override;
  void presentSettingPrompt(const VantariKey& permission) override { presentSettingPrompt(permission, Offer::always); }
  void openLink(std::string link) override;
  void dismissTopMost() override;
  void dismissBanner() override;
  void openSystemSettings() override;
  std::shared_ptr<void> shown(ScreenKind screen) override;
  std::string language() const override { return s_.sessions.language(); }
  const Locale& locale() const override { return *s_.platform.locale; }
  ScreenFonts fonts() const override { return s_.theme.fonts(); }
  std::optional<CustomColors> colors() const override { return s_.theme.colors(); }
  std::optional<ConsentSDKOptions> options() const override;
  const HostApplication& host() const override { return *s_.platform.host; }
  std::shared_ptr<DesktopSettings> desktop() const override { return s_.platform.desktop; }
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
  // Calls the user interface later, on the main queue; does nothing without one.
  void withPresenter(Show act);
  Task<bool> offersSettingsPrompt(VantariKey permission, Offer offer);
  std::int64_t now() const { return wholeSeconds(s_.platform.clock->now()); }

  const Services s_;
  std::weak_ptr<ScreenServices> self_;
  std::atomic<bool> isShownUnstored_ = false;  // the banner was shown although storing that failed: once per process
  std::mutex mutex_;                           // guards the member below
  std::vector<std::weak_ptr<std::function<void()>>> dismissalFollowers_;
};

}  // namespace quillon
