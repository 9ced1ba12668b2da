#include "ui/PreferenceCenter/PreferenceCenterViewModel.h"

#include <algorithm>
#include <chrono>

#include "ui/Common/Labels/Languages.h"
#include "ui/Common/Notice/Notice.h"

namespace quillon {
namespace {

using namespace std::chrono_literals;

constexpr auto voiceOverLifetime = 3500ms;
// Lets a screen reader announce the control first.
constexpr auto explanationDelay = 1500ms;

template <class Record>
using ListResult = ConsentSDKResult<std::vector<Record>>;

// The data to publish, copied in the background: with SDKs it may be megabytes.
struct LoadedPurposes {
  std::vector<Purpose> list;
  ListResult<Purpose> result = ListResult<Purpose>::none();
  std::string notice;
};

// Error texts are English, as in the log; the user sees a label instead.
CustomError english(Label label) {
  return {std::string(englishLabels().text(label))};
}

// Requires that the configuration allows opting out and does not bind the purpose to tracking.
bool isSwitchable(const Purpose& purpose) {
  return purpose.purposeId && purpose.disableOptOut == false && purpose.isATTMapped == false;
}

}  // namespace

std::string_view rawValue(MyPreferences tab) noexcept {
  return englishLabels().text(tab == MyPreferences::purposes ? Label::purposesTab : Label::permissionsTab);
}

std::shared_ptr<PreferenceCenterViewModel> PreferenceCenterViewModel::make(
    std::shared_ptr<ConsentBannerViewModel> banner) {
  return std::make_shared<PreferenceCenterViewModel>(std::move(banner));
}

PreferenceCenterViewModel::PreferenceCenterViewModel(std::shared_ptr<ConsentBannerViewModel> banner)
    : banner_(std::move(banner)) {}

void PreferenceCenterViewModel::loadPurposes() {
  purposeTask_ = LoadTask::startWithContent(
      banner_->sdk(), weak_from_this(),
      [](const ScreenContent& content, ScreenServices& sdk) {
        LoadedPurposes loaded;
        loaded.list = sdk.purposes();
        loaded.notice = preferenceCenterNotice(content, loaded.list, sdk);
        if (!loaded.notice.empty()) loaded.notice = sdk.keepNotice(std::move(loaded.notice));
        loaded.result = loaded.list.empty() ? ListResult<Purpose>::failure(english(Label::purposesUnavailable))
                                            : ListResult<Purpose>::success(loaded.list);
        return loaded;
      },
      [](PreferenceCenterViewModel& model, LoadedPurposes loaded) {
        if (!loaded.list.empty()) {
          auto selected = model.selectedPurposes.get();
          for (const Purpose& purpose : loaded.list) {
            if (purpose.purposeId) selected[*purpose.purposeId] = purpose.consentStatus == ConsentStatus::granted;
          }
          model.notice_ = std::move(loaded.notice);
          model.purposes.set(std::move(loaded.list));
          model.selectedPurposes.set(std::move(selected));
        }
        model.purposesResult.set(std::move(loaded.result));
      });
  purposesResult.set(ListResult<Purpose>::loading());
}

void PreferenceCenterViewModel::loadPermissions() {
  permissionsTask_ = LoadTask::start(
      banner_->sdk(), weak_from_this(), [](ScreenServices& sdk) { return sdk.permissions(); },
      [](PreferenceCenterViewModel& model, std::vector<AppPermission> loaded) {
        if (loaded.empty()) {
          model.permissionsResult.set(ListResult<AppPermission>::failure(english(Label::permissionsUnavailable)));
          return;
        }
        model.permissions.set(loaded);
        model.permissionsResult.set(ListResult<AppPermission>::success(std::move(loaded)));
      });
  permissionsResult.set(ListResult<AppPermission>::loading());
}

void PreferenceCenterViewModel::setAll(bool value) {
  const auto self = shared_from_this();
  auto selected = selectedPurposes.get();
  for (const Purpose& purpose : purposes.get()) {
    if (isSwitchable(purpose)) selected[*purpose.purposeId] = value;
  }
  selectedPurposes.set(std::move(selected));
  voiceOverText.set(banner_->label(value ? Label::selectAllAnnouncement : Label::unselectAllAnnouncement));
  voiceOverReset_ = publishAfter(voiceOverLifetime, &PreferenceCenterViewModel::voiceOverText, {});
}

bool PreferenceCenterViewModel::hasSwitchablePurposes() const {
  return std::ranges::any_of(purposes.get(), isSwitchable);
}

PurposeToggle PreferenceCenterViewModel::toggle(const Purpose& purpose) const {
  PurposeToggle toggle{};
  if (purpose.purposeId) {
    const auto choice = selectedPurposes.get().find(*purpose.purposeId);
    toggle.isOn = choice != selectedPurposes.get().end() && choice->second;
  }
  const bool isTracked = purpose.isATTMapped.value_or(false);
  const bool isEssential = purpose.disableOptOut.value_or(false);
  if (isEssential && !isTracked) toggle.isOn = true;
  toggle.isEnabled = purpose.purposeId && !isTracked && !isEssential;
  if (isTracked || isEssential) {
    toggle.label = banner_->label(Label::alwaysActive);
  } else {
    toggle.label = banner_->label(toggle.isOn ? Label::accepted : Label::rejected);
  }
  if (toggle.isEnabled) toggle.hint = banner_->label(toggle.isOn ? Label::toggleHintWhenOn : Label::toggleHintWhenOff);
  return toggle;
}

void PreferenceCenterViewModel::tapToggle(std::int64_t purposeId) {
  const auto purpose = std::ranges::find(purposes.get(), purposeId, &Purpose::purposeId);
  if (purpose == purposes.get().end()) return;
  const PurposeToggle shown = toggle(*purpose);
  if (shown.isEnabled) {
    auto selected = selectedPurposes.get();
    selected[purposeId] = !shown.isOn;
    selectedPurposes.set(std::move(selected));
    return;
  }
  const Label reason =
      purpose->isATTMapped.value_or(false) ? Label::attManagedPurposeExplanation : Label::essentialPurposeExplanation;
  explanation_ = publishAfter(explanationDelay, &PreferenceCenterViewModel::announcement, banner_->label(reason));
}

std::unique_ptr<Timer> PreferenceCenterViewModel::publishAfter(
    std::chrono::milliseconds delay, Published<std::string> PreferenceCenterViewModel::* property, std::string text) {
  return banner_->sdk()->after(delay, [model = weak_from_this(), property, text = std::move(text)] {
    if (const auto shown = model.lock()) ((*shown).*property).set(text);
  });
}

bool PreferenceCenterViewModel::save() {
  std::map<std::int64_t, bool> choices;
  const auto& selected = selectedPurposes.get();
  for (const Purpose& purpose : purposes.get()) {
    if (!purpose.purposeId) continue;
    const auto choice = selected.find(*purpose.purposeId);
    if (choice != selected.end()) choices.insert(*choice);
  }
  const std::shared_ptr<ScreenServices> sdk = banner_->sdk();  // leave() may destroy *this
  if (!sdk->save(choices, notice_)) return false;
  banner_->leave();
  sdk->dismissBanner();
  return true;
}

void PreferenceCenterViewModel::close() {
  banner_->leave();
}

bool PreferenceCenterViewModel::offersSettings(const AppPermission& permission) const {
  const BannerConfig* const banner = banner_->bannerConfigResult.get().value();
  return permission.permissionId && permission.isSettingsPromptEnabled.value_or(false) && banner &&
         banner->shouldShowSettingsPrompt.value_or(false);
}

void PreferenceCenterViewModel::tapPermission(const VantariKey& permission) {
  banner_->sdk()->presentSettingPrompt(permission);
}

}  // namespace quillon
