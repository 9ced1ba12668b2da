/// @file
/// The consent configuration document of an application.
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
#include <vector>

#include "quillon/BannerConfig.h"
#include "quillon/ConsentStatus.h"
#include "quillon/VantariKey.h"

namespace quillon {

/// A third-party component of the application that a purpose covers.
struct SDK {
  std::optional<std::int64_t> sdkId = std::nullopt;
  std::optional<std::string> namespaceId = std::nullopt;
  std::optional<LocalizedText> sdkName = std::nullopt;
  std::optional<LocalizedText> sdkDescription = std::nullopt;
  std::optional<std::string> vendor = std::nullopt;
  std::optional<std::string> logoBase64 = std::nullopt;
  std::optional<std::string> website = std::nullopt;
  std::optional<std::vector<std::string>> matchedBy = std::nullopt;
  std::optional<bool> collectingData = std::nullopt;
  std::optional<std::string> releaseDate = std::nullopt;
  std::optional<std::string> license = std::nullopt;
};

/// A consent category: what the user agrees to or declines.
struct Purpose {
  std::optional<std::int64_t> purposeId = std::nullopt;
  std::optional<LocalizedText> purposeName = std::nullopt;
  std::optional<LocalizedText> purposeDescription = std::nullopt;
  std::optional<std::vector<SDK>> sdks = std::nullopt;
  std::optional<ConsentStatus> consentStatus = std::nullopt;
  /// True for an essential purpose: users cannot opt out.
  std::optional<bool> disableOptOut = std::nullopt;
  std::optional<LocalizedText> optOutText = std::nullopt;
  std::optional<bool> hideDetails = std::nullopt;
  /// Not part of the document: true for a purpose governed by the device's tracking authorization.
  std::optional<bool> isATTMapped = false;
  /// Not part of the document: the explanation shown for a purpose governed by tracking.
  std::optional<LocalizedText> attDescription = std::nullopt;
  /// Not part of the document: true for a purpose that is off because of a privacy signal.
  bool isOptedOutBySignal = false;
};

/// A device permission declared by the application.
struct AppPermission {
  std::optional<std::int64_t> id = std::nullopt;
  std::optional<std::string> name = std::nullopt;
  std::optional<VantariKey> permissionId = std::nullopt;
  std::optional<LocalizedText> description = std::nullopt;
  std::optional<std::string> group = std::nullopt;
  std::optional<std::int64_t> groupId = std::nullopt;
  std::optional<ConsentStatus> consentStatus = std::nullopt;
  std::optional<LocalizedText> nameMap = std::nullopt;  ///< "nameI18N"
  /// Not part of the document: whether the settings prompt may be offered for this permission.
  std::optional<bool> isSettingsPromptEnabled = std::nullopt;
};

/// Purposes bound to the device's tracking authorization ("att_or_gad_config").
struct ATTConfig {
  std::optional<bool> showInfoOnPrefCenter = std::nullopt;
  std::optional<std::vector<std::int64_t>> purposeIds = std::nullopt;
  std::optional<LocalizedText> infoText = std::nullopt;
};

/// Texts and switches of the prompt that leads to the system settings ("settings_prompt").
struct SettingsPrompt {
  std::optional<LocalizedText> promptHeading = std::nullopt;
  std::optional<LocalizedText> promptMessage = std::nullopt;
  std::optional<LocalizedText> settingsButtonText = std::nullopt;
  std::optional<LocalizedText> notNowButtonText = std::nullopt;
  std::optional<std::map<std::string, bool, std::less<>>> permissions =
      std::nullopt;  ///< usage-description key to switch
};

/// The purposes that each consent-mode signal depends on.
struct DefaultMapping {
  std::optional<std::vector<std::int64_t>> analyticsStorage = std::nullopt;
  std::optional<std::vector<std::int64_t>> adStorage = std::nullopt;
  std::optional<std::vector<std::int64_t>> adUserData = std::nullopt;
  std::optional<std::vector<std::int64_t>> adPersonalization = std::nullopt;
};

/// The consent-mode mapping, with regional overrides ("gcm_config").
struct GcmConfig {
  std::optional<bool> showGcmDescription = std::nullopt;
  std::optional<LocalizedText> gcmDescription = std::nullopt;
  std::optional<DefaultMapping> defaultMapping = std::nullopt;
  std::optional<std::map<std::string, DefaultMapping, std::less<>>> regionOverrides = std::nullopt;
};

/// The whole document.
struct MainConfiguration {
  std::optional<std::int64_t> generatedOn = std::nullopt;
  std::optional<std::string> id = std::nullopt;
  std::optional<std::string> name = std::nullopt;
  std::optional<std::string> description = std::nullopt;
  std::optional<std::string> tenantId = std::nullopt;
  std::optional<std::string> platform = std::nullopt;
  std::optional<std::string> status = std::nullopt;
  std::optional<std::int64_t> version = std::nullopt;
  std::optional<std::string> logoBase64 = std::nullopt;
  /// Access token for the consent upload ("x-auth-token").
  std::optional<std::string> token = std::nullopt;
  std::optional<std::string> sdkVersion = std::nullopt;
  std::optional<std::vector<Purpose>> purposes = std::nullopt;
  std::optional<std::vector<AppPermission>> permissions = std::nullopt;
  std::optional<ConsentBannerConfig> bannerConfig = std::nullopt;
  std::optional<Translations> translations = std::nullopt;     ///< "i18n"
  std::optional<bool> isATTEnabled = std::nullopt;             ///< "is_att_enabled"
  std::optional<ATTConfig> attConfig = std::nullopt;           ///< "att_or_gad_config"
  std::optional<SettingsPrompt> settingPrompt = std::nullopt;  ///< "settings_prompt"
  std::optional<bool> reConsentEnabled = std::nullopt;
  std::optional<bool> isSettingsPromptEnabled = std::nullopt;  ///< "is_sp_enabled"
  std::optional<bool> isGcmEnabled = std::nullopt;
  std::optional<GcmConfig> gcmConfig = std::nullopt;
  /// The purposes that a privacy signal opts out of, if the application honours signals and names none itself.
  std::optional<std::vector<std::int64_t>> privacySignalPurposes = std::nullopt;
};

[[nodiscard]] bool operator==(const SDK& left, const SDK& right);
[[nodiscard]] bool operator==(const Purpose& left, const Purpose& right);
[[nodiscard]] bool operator==(const AppPermission& left, const AppPermission& right);
[[nodiscard]] bool operator==(const ATTConfig& left, const ATTConfig& right);
[[nodiscard]] bool operator==(const SettingsPrompt& left, const SettingsPrompt& right);
[[nodiscard]] bool operator==(const DefaultMapping& left, const DefaultMapping& right);
[[nodiscard]] bool operator==(const GcmConfig& left, const GcmConfig& right);
[[nodiscard]] bool operator==(const MainConfiguration& left, const MainConfiguration& right);

}  // namespace quillon

/// @cond equal records hash equally
template <>
struct std::hash<quillon::SDK> {
  std::size_t operator()(const quillon::SDK& record) const;
};
template <>
struct std::hash<quillon::Purpose> {
  std::size_t operator()(const quillon::Purpose& record) const;
};
template <>
struct std::hash<quillon::AppPermission> {
  std::size_t operator()(const quillon::AppPermission& record) const;
};
template <>
struct std::hash<quillon::ATTConfig> {
  std::size_t operator()(const quillon::ATTConfig& record) const;
};
template <>
struct std::hash<quillon::SettingsPrompt> {
  std::size_t operator()(const quillon::SettingsPrompt& record) const;
};
template <>
struct std::hash<quillon::DefaultMapping> {
  std::size_t operator()(const quillon::DefaultMapping& record) const;
};
template <>
struct std::hash<quillon::GcmConfig> {
  std::size_t operator()(const quillon::GcmConfig& record) const;
};
template <>
struct std::hash<quillon::MainConfiguration> {
  std::size_t operator()(const quillon::MainConfiguration& record) const;
};
/// @endcond
