// The preference centre: the purposes with the choices that are not saved yet, and the permissions.
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

// The switch of a purpose as it is shown and read out.
struct PurposeToggle {
  bool isOn;
  bool isEnabled;
  std::string label;  // the state in words
  std::string hint;   // empty when it cannot be switched

  bool operator==(const PurposeToggle&) const = default;
};

// For the main queue only. Lives as long as the screen; what was not saved by then is discarded.
class PreferenceCenterViewModel : public std::enable_shared_from_this<PreferenceCenterViewModel> {
 public:
  static std::shared_ptr<PreferenceCenterViewModel> make(std::shared_ptr<ConsentBannerViewModel> banner);
  explicit PreferenceCenterViewModel(std::shared_ptr<ConsentBannerViewModel> banner);  // use make()

  Published<ConsentSDKResult<std::vector<AppPermission>>> permissionsResult{
      ConsentSDKResult<std::vector<AppPermission>>::none()};
  Published<ConsentSDKResult<std::vector<Purpose>>> purposesResult{ConsentSDKResult<std::vector<Purpose>>::none()};
  Published<std::vector<AppPermission>> permissions{{}};
  // True for a purpose that will be saved as granted.
  Published<std::map<std::int64_t, bool>> selectedPurposes{{}};
  Published<std::vector<Purpose>> purposes{{}};
  Published<MyPreferences> currentSegment{MyPreferences::purposes};
  // What the list of purposes tells a screen reader after all were switched; empty again 3.5 seconds later.
  Published<std::string> voiceOverText{{}};
  // What a screen reader must say now. Published anew for every announcement, equal or not.
  Published<std::string> announcement{{}};

  void loadPurposes();
  void loadPermissions();

  // Switches every purpose that the user may decide about.
  void setAll(bool value);
  // Whether there are such purposes.
  bool hasSwitchablePurposes() const;

  PurposeToggle toggle(const Purpose& purpose) const;
  // The user has touched the switch of a purpose. One that cannot be switched stays, and is explained 1.5 seconds
  // later.
  void tapToggle(std::int64_t purposeId);

  // Stores the choices as the user's, uploads what changed, and closes the preference centre and the banner below it.
  // False, and the screen stays, when they could not be stored.
  bool save();
  void close();
  // Offers the way to the system settings for a permission, where the configuration has one.
  void tapPermission(const VantariKey& permission);
  // Whether a tap on the permission offers that way.
  bool offersSettings(const AppPermission& permission) const;

  const std::shared_ptr<ConsentBannerViewModel>& banner() const { return banner_; }

 private:
  // Publishes the text on the main queue once the delay is over.
  std::unique_ptr<Timer> publishAfter(std::chrono::milliseconds delay,
                                      Published<std::string> PreferenceCenterViewModel::* property, std::string text);

  const std::shared_ptr<ConsentBannerViewModel> banner_;
  std::string notice_;  // the digest of what is shown
  std::optional<LoadTask> permissionsTask_;
  std::optional<LoadTask> purposeTask_;
  std::unique_ptr<Timer> voiceOverReset_;
  std::unique_ptr<Timer> explanation_;
};

}  // namespace quillon
