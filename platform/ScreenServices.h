// What a screen may ask of the SDK that it belongs to.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Clock.h"
#include "HostApplication.h"
#include "Job.h"
#include "quillon/ConsentSDKOptions.h"
#include "quillon/Listeners.h"
#include "quillon/LogLevel.h"
#include "quillon/MainConfiguration.h"
#include "quillon/SDKStatus.h"
#include "quillon/VantariKey.h"

namespace quillon {

class SDKLogger;

// What the screens show of the configuration.
struct ScreenContent {
  std::shared_ptr<const MainConfiguration> configuration;  // null when there is none
  std::optional<BannerConfig> banner;                      // for the user's location, with the interface's texts
};

struct ScreenFonts {
  std::optional<CustomFont> heading = std::nullopt;
  std::optional<CustomFont> body = std::nullopt;
  std::optional<CustomFont> subHeading = std::nullopt;
  std::optional<CustomFont> headingLight = std::nullopt;
};

// Thread-safe unless said otherwise. Holding it keeps the SDK's services alive. Once the SDK is closed, nothing that
// was asked for is done or delivered any more.
class ScreenServices {
 public:
  virtual ~ScreenServices() = default;

  // What is shown. `prepare` runs in the background; the job that it returns, on the main queue.
  virtual void load(std::function<Job(ScreenContent)> prepare) = 0;
  // For the background only: the purposes and permissions in display order with their present consents. The permissions
  // wait for the device.
  virtual std::vector<Purpose> purposes() = 0;
  virtual std::vector<AppPermission> permissions() = 0;

  // What the user decides. Stored when the call returns, uploaded in the background. False when it was not stored.
  virtual bool answer(bool accept) = 0;
  virtual bool save(const std::map<std::int64_t, bool>& selectedPurposes) = 0;
  // The banner was seen and not answered.
  virtual bool recordDefaults() = 0;
  // The settings prompt is not to be offered again.
  virtual void closeSettingsPrompt() = 0;

  // Further screens, and the end of one. All on the main queue, later.
  virtual void presentPreferenceCenter() = 0;
  virtual void presentSettingPrompt(const VantariKey& permission) = 0;
  virtual void openLink(std::string link) = 0;
  virtual void dismissTopMost() = 0;
  // The banner is answered: takes it away, wherever it is shown.
  virtual void dismissBanner() = 0;
  virtual void openSystemSettings() = 0;
  // The screen is on screen now; it is gone when what is returned goes.
  [[nodiscard]] virtual std::shared_ptr<void> shown(ScreenKind screen) = 0;

  // How it is shown.
  virtual std::string language() const = 0;
  virtual ScreenFonts fonts() const = 0;
  virtual std::optional<CustomColors> colors() const = 0;
  virtual std::optional<ConsentSDKOptions> options() const = 0;
  virtual const HostApplication& host() const = 0;
  virtual SDKLogger& logger() = 0;
  virtual SDKStatus status() const = 0;
  // Calls on the main queue with every later status, until the handle is dropped there.
  [[nodiscard]] virtual std::shared_ptr<void> followStatus(std::function<void(SDKStatus)> changed) = 0;

  // Calls on the main queue when the banner is taken away by dismissBanner(), until the handle is dropped there.
  [[nodiscard]] virtual std::shared_ptr<void> followBannerDismissal(std::function<void()> dismissed) = 0;

  // Work of a screen's own. `work` runs in the background; the job that it returns, on the main queue.
  virtual void run(std::move_only_function<Job()> work) = 0;
  virtual void onMain(Job job) = 0;
  // Runs the job on the main queue after the delay, unless the timer is dropped before.
  [[nodiscard]] virtual std::unique_ptr<Timer> after(std::chrono::milliseconds delay, std::function<void()> job) = 0;
};

}  // namespace quillon
