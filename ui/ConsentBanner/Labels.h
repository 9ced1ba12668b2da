// The labels that the screens have of their own, apart from the texts that a banner configures.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "quillon/BannerConfig.h"

namespace quillon {

enum class Label {
  selectAll,
  unselectAll,
  alwaysActive,
  accepted,
  rejected,
  vendor,
  dataCollected,
  yes,
  no,
  developerURL,
  licence,
  releaseDate,
  saveChanges,
  purposes,
  allowed,
  notAllowed,
  update,
  companyLogo,
  selectAllAnnouncement,
  unselectAllAnnouncement,
  webViewRefresh,
  webViewBack,
  webViewForward,
  details,
  close,
  activationHint,
  toggleHintWhenOff,
  toggleHintWhenOn,
  expandedState,
  collapsedState,
  expandHint,
  collapseHint,
  hintPrefix,
  essentialPurposeExplanation,
  attManagedPurposeExplanation,
  privacySignalExplanation,
  // Of our own.
  trackingNotAllowed,
  loading,
  saved,
  notSaved,
  // Patterns that join two texts, "%1" and "%2".
  twoSentences,
  partOf,
  fact,
  hint,
  // For buttons to which the configuration gives no text.
  accept,
  reject,
  privacyNotice,
  dsrPortal,
  openSettings,
  notNow,
};

struct LabelText {
  std::string_view key;  // in the configuration's table of translations
  std::string_view english;
};

// In the order of Label.
inline constexpr std::array labelTexts{
    LabelText{"select_all", "Select All"},
    LabelText{"unselect_all", "Unselect All"},
    LabelText{"always_active", "Always Active"},
    LabelText{"accepted", "Accepted"},
    LabelText{"rejected", "Rejected"},
    LabelText{"vendor", "Vendor"},
    LabelText{"data_collected", "Data Collected"},
    LabelText{"yes", "Yes"},
    LabelText{"no", "No"},
    LabelText{"developer_url", "Developer URL"},
    LabelText{"licence", "License"},
    LabelText{"release_date", "Release Date"},
    LabelText{"save_changes", "Save Changes"},
    LabelText{"purposes", "Purposes"},
    LabelText{"allowed", "Allowed"},
    LabelText{"not_allowed", "Not Allowed"},
    LabelText{"update", "Update"},
    LabelText{"company_logo", "Company Logo"},
    LabelText{"select_all_announcement", "All applicable SDK Purposes are allowed."},
    LabelText{"unselect_all_announcement",
              "All Non-Essential SDK Purposes are not allowed, Essential purposes remain selected."},
    LabelText{"web_view_refresh", "Refresh"},
    LabelText{"web_view_back", "Go Backward"},
    LabelText{"web_view_forward", "Go Forward"},
    LabelText{"details", "Details"},
    LabelText{"close", "Close"},
    LabelText{"activation_hint", "Double tap to activate"},
    LabelText{"toggle_hint_when_off", "Double tap to turn to accepted"},
    LabelText{"toggle_hint_when_on", "Double tap to turn to rejected"},
    LabelText{"expanded_state", "Expanded"},
    LabelText{"collapsed_state", "Collapsed"},
    LabelText{"expand_hint", "Expand"},
    LabelText{"collapse_hint", "Collapse"},
    LabelText{"hint_prefix", "Double tap to"},
    LabelText{"essential_purpose_explanation", "You cannot opt out from this Purpose."},
    LabelText{
        "att_managed_purpose_explanation",
        "You can't toggle this Purpose because it\u2019s managed by Apple's App Tracking Transparency framework."},
    LabelText{"privacy_signal_explanation",
              "A privacy signal of your device or this application is honoured here unless you accept this Purpose."},
    LabelText{"tracking_not_allowed", "Off: this device does not allow tracking"},
    LabelText{"loading", "Loading"},
    LabelText{"saved", "Your choices are saved."},
    LabelText{"not_saved", "Your choices could not be saved."},
    LabelText{"two_sentences", "%1. %2"},
    LabelText{"part_of", "%1, %2"},
    LabelText{"fact", "%1: %2"},
    LabelText{"hint", "%1 %2"},
    LabelText{"accept", "Accept"},
    LabelText{"reject", "Reject"},
    LabelText{"privacy_notice", "Privacy Notice"},
    LabelText{"dsr_portal", "Your Data Rights"},
    LabelText{"open_settings", "Open Settings"},
    LabelText{"not_now", "Not Now"},
};
static_assert(labelTexts.size() == static_cast<std::size_t>(Label::notNow) + 1);

// The banner's translation into the language, else the English text; an empty translation counts as none.
[[nodiscard]] std::string labelText(Label label, const std::optional<BannerConfig>& banner, std::string_view language);

// Two texts joined by a pattern; the other one alone when one of them is empty. A translated pattern that does not have
// both places gives way to ours. A full stop at the end of the first makes none double.
[[nodiscard]] std::string joined(Label pattern, std::string first, std::string second,
                                 const std::optional<BannerConfig>& banner, std::string_view language);

}  // namespace quillon
