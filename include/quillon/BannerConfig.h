/// @file
/// Content and appearance of the consent banner and the preference centre.
///
/// All structures are plain values with structural equality. A member is read from the JSON key of the same name in
/// snake case; a comment gives the key where it differs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "quillon/RawValue.h"

namespace quillon {

/// A text in several languages: language code ("en", "de") to text.
using LocalizedText = std::map<std::string, std::string, std::less<>>;

/// Interface texts: language code, then text key. A language may be listed without texts.
using Translations = std::map<std::string, std::optional<LocalizedText>, std::less<>>;

/// The consent model of a banner.
enum class ComplianceType {
  noticeOnly,  ///< "notice-only": the user is informed, not asked
  optIn,       ///< "opt-in": declined until the user agrees
  optOut,      ///< "opt-out": granted until the user objects
};
[[nodiscard]] std::string_view rawValue(ComplianceType value) noexcept;

/// Position of the banner: "bottom" or "center".
enum class BannerPosition { bottom, center };
[[nodiscard]] std::string_view rawValue(BannerPosition value) noexcept;

/// Shape of the banner's buttons: "rounded", "square", "pill", "outlined" or "edgeless".
enum class ButtonShape { rounded, square, pill, outlined, edgeless };
[[nodiscard]] std::string_view rawValue(ButtonShape value) noexcept;

/// An opaque sRGB colour; components from 0 to 1.
struct Color {
  double red = 0;
  double green = 0;
  double blue = 0;

  bool operator==(const Color&) const = default;
};

/// Parses a configured colour: "#" characters are ignored, the leading hexadecimal digits are read as one number, and
/// its low 24 bits are red, green and blue. No short form, no alpha; an unreadable text is black.
[[nodiscard]] Color colorFromText(std::string_view text) noexcept;

/// Custom colours ("palette") as colour texts; the last four are optional.
struct CustomColors {
  std::string buttonBackground;
  std::string buttonText;
  std::string buttonBorder;
  std::string bannerBackground;
  std::string bannerText;
  std::string bannerLinks;
  std::string preferenceCenterFooterBackground;
  std::string preferenceCenterFooterSelector;
  std::optional<std::string> togglePrimarycolor = std::nullopt;                ///< "toggle_primary"
  std::optional<std::string> toggleSecondarycolor = std::nullopt;              ///< "toggle_secondary"
  std::optional<std::string> purposeDisclaimerTextColor = std::nullopt;        ///< "purpose_disclaimer_text"
  std::optional<std::string> purposeDisclaimerBackgroundColor = std::nullopt;  ///< "purpose_disclaimer_background"
};

/// A screen font: family name, size in points, weight (100 thin to 900 black, 400 regular).
struct CustomFont {
  std::string name;
  double size = 0;
  int type = 400;

  bool operator==(const CustomFont&) const = default;
};

/// The banner of one category.
struct BannerConfig {
  std::optional<bool> hideCloseButton = std::nullopt;
  std::optional<bool> hideAcceptButton = std::nullopt;  ///< "hide_accept_toggle"
  std::optional<bool> embedDSRPortalLink = std::nullopt;
  std::optional<bool> recordConsentUponAppStart = std::nullopt;
  std::optional<bool> hideToggleForEssentialCategories = std::nullopt;
  std::optional<std::string> name = std::nullopt;
  std::optional<std::string> dsrPortalLink = std::nullopt;
  std::optional<ComplianceType> complianceType = std::nullopt;
  /// How long an answer stays valid: a count, one space and "month" or "year", such as "12 month".
  std::optional<std::string> bannerReappearanceTime = std::nullopt;
  std::optional<std::string> privacyNoticeLink = std::nullopt;
  std::optional<LocalizedText> accept = std::nullopt;
  std::optional<LocalizedText> reject = std::nullopt;
  std::optional<LocalizedText> bannerText = std::nullopt;
  std::optional<LocalizedText> bannerHeading = std::nullopt;
  std::optional<LocalizedText> sdkTabHeading = std::nullopt;
  std::optional<LocalizedText> privacyNoticeText = std::nullopt;
  std::optional<LocalizedText> preferenceCenterLink = std::nullopt;
  std::optional<LocalizedText> permissionsTabHeading = std::nullopt;
  std::optional<LocalizedText> permissionsTabGuidance = std::nullopt;
  std::optional<LocalizedText> preferenceCenterHeading = std::nullopt;
  std::optional<LocalizedText> preferenceCenterGuidance = std::nullopt;
  std::optional<LocalizedText> permissionsTabDescription = std::nullopt;
  std::optional<LocalizedText> preferenceCenterDescription = std::nullopt;
  std::optional<bool> showPoweredByQuillonLogo = std::nullopt;
  std::optional<bool> showDescriptionTextWithPrefCenterToggle =
      std::nullopt;  ///< "show_description_text_with_preference_center_toggle"
  std::optional<std::int64_t> paletteTheme = std::nullopt;
  std::optional<BannerPosition> bannerPosition = std::nullopt;
  std::optional<ButtonShape> buttonShape = std::nullopt;
  std::optional<std::string> companyLogo = std::nullopt;          ///< base64 text of an image
  std::optional<CustomColors> customPaletteTheme = std::nullopt;  ///< "palette"
  std::optional<bool> shouldShowSettingsPrompt = std::nullopt;
  /// Not part of the document: interface texts, set when the banner is prepared.
  std::optional<Translations> translations = std::nullopt;
};

/// All banners of a configuration, and the maps that select one by the user's location.
struct ConsentBannerConfig {
  std::map<std::string, BannerConfig, std::less<>> categories;
  std::map<std::string, std::string, std::less<>> namesMap;
  std::map<std::string, std::string, std::less<>> locations;
};

[[nodiscard]] bool operator==(const CustomColors& left, const CustomColors& right);
[[nodiscard]] bool operator==(const BannerConfig& left, const BannerConfig& right);
[[nodiscard]] bool operator==(const ConsentBannerConfig& left, const ConsentBannerConfig& right);

}  // namespace quillon

/// @cond equal records hash equally
template <>
struct std::hash<quillon::CustomColors> {
  std::size_t operator()(const quillon::CustomColors& record) const;
};
template <>
struct std::hash<quillon::BannerConfig> {
  std::size_t operator()(const quillon::BannerConfig& record) const;
};
template <>
struct std::hash<quillon::ConsentBannerConfig> {
  std::size_t operator()(const quillon::ConsentBannerConfig& record) const;
};
/// @endcond
