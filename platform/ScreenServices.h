// The SDK's interface for its screens.
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
#include "DesktopSettings.h"
#include "HostApplication.h"
#include "Job.h"
#include "Locale.h"
#include "quillon/ConsentSDKOptions.h"
#include "quillon/ConsentSDKResult.h"
#include "quillon/Listeners.h"
#include "quillon/LogLevel.h"
#include "quillon/MainConfiguration.h"
#include "quillon/SDKStatus.h"
#include "quillon/VantariKey.h"

namespace quillon {

class FileChooser;
class ReceiptIssuer;
class SDKLogger;

// The configuration's content for a screen.
struct ScreenContent {
  std::shared_ptr<const MainConfiguration> configuration;  // null when there is none
  std::optional<BannerConfig> banner;                      // for the user's location, with interface texts
  std::string place;                                       // the known location; empty without one
};

struct ScreenFonts {
  std::optional<CustomFont> heading = std::nullopt;
  std::optional<CustomFont> body = std::nullopt;
  std::optional<CustomFont> subHeading = std::nullopt;
  std::optional<CustomFont> headingLight = std::nullopt;
};

// Thread-safe unless documented otherwise. Keeps the SDK's services alive. After close() requests are dropped and
// nothing is delivered.
class ScreenServices {
 public:
  virtual ~ScreenServices() = default;

  // Loads the screen content. `prepare` runs in the background; the job it returns runs on the main queue.
  virtual void load(std::function<Job(ScreenContent)> prepare) = 0;
  // Background threads only: purposes and permissions in display order, with current consents. permissions() waits for
  // the device.
  virtual std::vector<Purpose> purposes() = 0;
  virtual std::vector<AppPermission> permissions() = 0;

  // Background threads only: a signed receipt of all decisions. A failure is logged, too.
  virtual ConsentSDKResult<std::string> receipt() = 0;
  // Summarises receipts; null without one.
  virtual std::shared_ptr<ReceiptIssuer> receipts() const = 0;
  // Null without one.
  virtual std::shared_ptr<FileChooser> chooser() const = 0;

  // Background threads only: stores the canonical text (RFC 8785) of a screen's notice, and returns its SHA-256 digest,
  // by which decisions refer to it.
  virtual std::string keepNotice(std::string text) = 0;

  // Stores the user's decisions on a screen, with the digest of its notice. Durable on return, uploaded in the
  // background. False when not stored.
  virtual bool answer(bool accept, const std::string& notice) = 0;
  virtual bool save(const std::map<std::int64_t, bool>& selectedPurposes, const std::string& notice) = 0;
  // Stores the defaults after the banner was closed without an answer.
  virtual bool recordDefaults(const std::string& notice) = 0;
  // Stops the settings prompt from being offered again.
  virtual void closeSettingsPrompt() = 0;

  // Shows or dismisses screens, later on the main queue.
  virtual void presentPreferenceCenter() = 0;
  virtual void presentSettingPrompt(const VantariKey& permission) = 0;
  virtual void openLink(std::string link) = 0;
  virtual void dismissTopMost() = 0;
  // Dismisses the answered banner, wherever it is.
  virtual void dismissBanner() = 0;
  virtual void openSystemSettings() = 0;
  // Reports the screen as shown until the result is destroyed.
  [[nodiscard]] virtual std::shared_ptr<void> shown(ScreenKind screen) = 0;

  // Language and appearance.
  virtual std::string language() const = 0;
  virtual const Locale& locale() const = 0;
  virtual ScreenFonts fonts() const = 0;
  virtual std::optional<CustomColors> colors() const = 0;
  virtual std::optional<ConsentSDKOptions> options() const = 0;
  virtual const HostApplication& host() const = 0;
  // Null without one.
  virtual std::shared_ptr<DesktopSettings> desktop() const = 0;
  virtual SDKLogger& logger() = 0;
  virtual SDKStatus status() const = 0;
  // Calls `changed` on the main queue with every later status, until the handle is dropped there.
  [[nodiscard]] virtual std::shared_ptr<void> followStatus(std::function<void(SDKStatus)> changed) = 0;

  // Calls `dismissed` on the main queue when dismissBanner() is called, until the handle is dropped there.
  [[nodiscard]] virtual std::shared_ptr<void> followBannerDismissal(std::function<void()> dismissed) = 0;

  // Runs `work` in the background; the job it returns runs on the main queue.
  virtual void run(std::move_only_function<Job()> work) = 0;
  virtual void onMain(Job job) = 0;
  // Runs the job on the main queue after the delay, unless the timer is destroyed first.
  [[nodiscard]] virtual std::unique_ptr<Timer> after(std::chrono::milliseconds delay, std::function<void()> job) = 0;
};

}  // namespace quillon
