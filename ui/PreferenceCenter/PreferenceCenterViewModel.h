// The view model of the preference centre: purposes with unsaved choices, and permissions.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Clock.h"
#include "quillon/ConsentSDKResult.h"
#include "quillon/MainConfiguration.h"
#include "ui/Common/LoadTask.h"
#include "ui/Common/Published.h"
#include "ui/ConsentBanner/ConsentBannerViewModel.h"

namespace quillon {

// The tabs, in order.
enum class MyPreferences { purposes, permissions };
[[nodiscard]] std::string_view rawValue(MyPreferences tab) noexcept;

// A purpose's switch, as shown and announced.
struct PurposeToggle {
  bool isOn;
  bool isEnabled;
  std::string label;  // the state as text
  std::string hint;   // empty if it cannot be switched

  bool operator==(const PurposeToggle&) const = default;
};

// Main queue only. Lives as long as the screen; unsaved choices are discarded.
class PreferenceCenterViewModel : public std::enable_shared_from_this<PreferenceCenterViewModel> {
 public:
  static std::shared_ptr<PreferenceCenterViewModel> make(std::shared_ptr<ConsentBannerViewModel> banner);
  explicit PreferenceCenterViewModel(std::shared_ptr<ConsentBannerViewModel> banner);  // use make()

  Published<ConsentSDKResult<std::vector<AppPermission>>> permissionsResult{
      ConsentSDKResult<std::vector<AppPermission>>::none()};
  Published<ConsentSDKResult<std::vector<Purpose>>> purposesResult{ConsentSDKResult<std::vector<Purpose>>::none()};
  Published<std::vector<AppPermission>> permissions{{}};
  // True if saving would grant the purpose.
  Published<std::map<std::int64_t, bool>> selectedPurposes{{}};
  Published<std::vector<Purpose>> purposes{{}};
  Published<MyPreferences> currentSegment{MyPreferences::purposes};
  // The announcement after setAll(); cleared after 3.5 seconds.
  Published<std::string> voiceOverText{{}};
  // To be announced by a screen reader. Set for every announcement, even an equal one.
  Published<std::string> announcement{{}};

  void loadPurposes();
  void loadPermissions();

  // Switches all purposes that the user may decide on.
  void setAll(bool value);
  // Whether there are any.
  bool hasSwitchablePurposes() const;

  PurposeToggle toggle(const Purpose& purpose) const;
  // Handles a tap on a purpose's switch. One that cannot be switched is explained after 1.5 seconds.
  void tapToggle(std::int64_t purposeId);

  // Stores the choices as the user's, uploads the changes, and closes the preference centre and the banner below it. If
  // storing fails, returns false and the screen stays.
  bool save();
  void close();
  // Offers to open the system settings for a permission, if configured.
  void tapPermission(const VantariKey& permission);
  // Whether tapPermission() offers that.
  bool offersSettings(const AppPermission& permission) const;

  const std::shared_ptr<ConsentBannerViewModel>& banner() const { return banner_; }

 private:
  // Sets a property on the main queue after a delay.
  std::unique_ptr<Timer> publishAfter(std::chrono::milliseconds delay,
                                      Published<std::string> PreferenceCenterViewModel::* property, std::string text);

  const std::shared_ptr<ConsentBannerViewModel> banner_;
  std::string notice_;  // digest of the displayed content
  std::optional<LoadTask> permissionsTask_;
  std::optional<LoadTask> purposeTask_;
  std::unique_ptr<Timer> voiceOverReset_;
  std::unique_ptr<Timer> explanation_;
};

}  // namespace quillon
