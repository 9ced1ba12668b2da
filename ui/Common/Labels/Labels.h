// The built-in texts of the screens, in addition to those that a banner configures.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "quillon/BannerConfig.h"

namespace quillon {

class ScreenServices;

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
  trackingNotAllowed,
  loading,
  saved,
  notSaved,
  // Shown instead of content that cannot be loaded.
  bannerUnavailable,
  settingsPromptUnavailable,
  purposesUnavailable,
  permissionsUnavailable,
  // The receipt, and saving it to a file.
  receipt,
  receiptExplanation,
  saveReceipt,
  choosingFile,
  receiptSaved,
  receiptNotSaved,
  receiptSaveCancelled,
  fileDialogUnavailable,
  receiptUnavailable,
  // Content of a receipt.
  doesNotHold,
  identifier,
  madeOn,
  madeBy,
  newestEntry,
  dataSubject,
  notStated,
  controller,
  recipients,
  personalData,
  legalBasis,
  jurisdiction,
  storageLocation,
  retention,
  withdrawal,
  noAnswer,
  unknownTime,
  contact,
  address,
  notKept,
  language,
  // The page for refused addresses.
  pageBlocked,
  pageBlockedExplanation,
  blockedAddress,
  // Patterns that combine two texts, "%1" and "%2".
  twoSentences,
  partOf,
  fact,
  hint,
  // For controls whose text is not configured.
  purposesTab,
  permissionsTab,
  accept,
  reject,
  privacyNotice,
  dsrPortal,
  openSettings,
  notNow,
};

// The keys in the configuration's translations and in our language files; in the order of Label.
inline constexpr auto labelKeys = std::to_array<std::string_view>({
    "select_all",
    "unselect_all",
    "always_active",
    "accepted",
    "rejected",
    "vendor",
    "data_collected",
    "yes",
    "no",
    "developer_url",
    "licence",
    "release_date",
    "save_changes",
    "purposes",
    "allowed",
    "not_allowed",
    "update",
    "company_logo",
    "select_all_announcement",
    "unselect_all_announcement",
    "web_view_refresh",
    "web_view_back",
    "web_view_forward",
    "details",
    "close",
    "activation_hint",
    "toggle_hint_when_off",
    "toggle_hint_when_on",
    "expanded_state",
    "collapsed_state",
    "expand_hint",
    "collapse_hint",
    "hint_prefix",
    "essential_purpose_explanation",
    "att_managed_purpose_explanation",
    "privacy_signal_explanation",
    "tracking_not_allowed",
    "loading",
    "saved",
    "not_saved",
    "banner_unavailable",
    "settings_prompt_unavailable",
    "purposes_unavailable",
    "permissions_unavailable",
    "receipt",
    "receipt_explanation",
    "save_receipt",
    "choosing_file",
    "receipt_saved",
    "receipt_not_saved",
    "receipt_save_cancelled",
    "file_dialog_unavailable",
    "receipt_unavailable",
    "does_not_hold",
    "identifier",
    "made_on",
    "made_by",
    "newest_entry",
    "data_subject",
    "not_stated",
    "controller",
    "recipients",
    "personal_data",
    "legal_basis",
    "jurisdiction",
    "storage_location",
    "retention",
    "withdrawal",
    "no_answer",
    "unknown_time",
    "contact",
    "address",
    "not_kept",
    "language",
    "page_blocked",
    "page_blocked_explanation",
    "blocked_address",
    "two_sentences",
    "part_of",
    "fact",
    "hint",
    "purposes_tab",
    "permissions_tab",
    "accept",
    "reject",
    "privacy_notice",
    "dsr_portal",
    "open_settings",
    "not_now",
});
static_assert(labelKeys.size() == static_cast<std::size_t>(Label::notNow) + 1);

struct LabelText {
  std::string text;
  std::string language;  // of the text
};

// The user's language with script and region as given by the application or else by the device: "zh-hant-tw", even if
// the configuration's texts are for "zh".
[[nodiscard]] std::string languageOfLabels(const ScreenServices& sdk);

// The banner's translation, or the built-in one; empty ones are ignored. "zh-hant-tw" falls back to "zh-hant" and "zh",
// first in the banner, then in the built-in labels, then to English.
[[nodiscard]] LabelText labelText(Label label, const std::optional<BannerConfig>& banner, std::string_view language);

// Combines two texts with a pattern; if one is empty, returns the other. A translated pattern without both placeholders
// is replaced by ours. A full stop at the end of the first text is not doubled.
[[nodiscard]] std::string joined(Label pattern, std::string first, std::string second,
                                 const std::optional<BannerConfig>& banner, std::string_view language);

}  // namespace quillon
