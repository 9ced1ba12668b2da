/// @file
/// The consent configuration of an application, as its privacy team publishes it.
///
/// All records are plain values with structural equality; an absent optional equals only an absent one. A member named
/// after its JSON key in camel case is read from that key in snake case; where the key differs, the comment gives it.
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
  std::optional<std::int64_t> sdkId;
  std::optional<std::string> namespaceId;
  std::optional<LocalizedText> sdkName;
  std::optional<LocalizedText> sdkDescription;
  std::optional<std::string> vendor;
  std::optional<std::string> logoBase64;
  std::optional<std::string> website;
  std::optional<std::vector<std::string>> matchedBy;
  std::optional<bool> collectingData;
  std::optional<std::string> releaseDate;
  std::optional<std::string> license;
};

/// A consent category: what the user agrees to or declines.
struct Purpose {
  std::optional<std::int64_t> purposeId;
  std::optional<LocalizedText> purposeName;
  std::optional<LocalizedText> purposeDescription;
  std::optional<std::vector<SDK>> sdks;
  std::optional<ConsentStatus> consentStatus;
  /// True for an essential purpose, which the user may not opt out of.
  std::optional<bool> disableOptOut;
  std::optional<LocalizedText> optOutText;
  std::optional<bool> hideDetails;
  /// Not part of the document: true for a purpose that the device's tracking authorization governs.
  std::optional<bool> isATTMapped = false;
  /// Not part of the document: the explanation shown for such a purpose.
  std::optional<LocalizedText> attDescription;
};

/// A device permission that the application declares.
struct AppPermission {
  std::optional<std::int64_t> id;
  std::optional<std::string> name;
  std::optional<VantariKey> permissionId;
  std::optional<LocalizedText> description;
  std::optional<std::string> group;
  std::optional<std::int64_t> groupId;
  std::optional<ConsentStatus> consentStatus;
  std::optional<LocalizedText> nameMap;  ///< "nameI18N"
  /// Not part of the document: whether the settings prompt may be offered for this permission.
  std::optional<bool> isSettingsPromptEnabled;
};

/// Purposes bound to the device's tracking authorization ("att_or_gad_config").
struct ATTConfig {
  std::optional<bool> showInfoOnPrefCenter;
  std::optional<std::vector<std::int64_t>> purposeIds;
  std::optional<LocalizedText> infoText;
};

/// Texts and switches of the prompt that leads to the system settings ("settings_prompt").
struct SettingsPrompt {
  std::optional<LocalizedText> promptHeading;
  std::optional<LocalizedText> promptMessage;
  std::optional<LocalizedText> settingsButtonText;
  std::optional<LocalizedText> notNowButtonText;
  std::optional<std::map<std::string, bool, std::less<>>> permissions;  ///< usage-description key to switch
};

/// Purposes that each consent-mode signal depends on.
struct DefaultMapping {
  std::optional<std::vector<std::int64_t>> analyticsStorage;
  std::optional<std::vector<std::int64_t>> adStorage;
  std::optional<std::vector<std::int64_t>> adUserData;
  std::optional<std::vector<std::int64_t>> adPersonalization;
};

/// The consent-mode mapping, with overrides by region ("gcm_config").
struct GcmConfig {
  std::optional<bool> showGcmDescription;
  std::optional<LocalizedText> gcmDescription;
  std::optional<DefaultMapping> defaultMapping;
  std::optional<std::map<std::string, DefaultMapping, std::less<>>> regionOverrides;
};

/// The whole document.
struct MainConfiguration {
  std::optional<std::int64_t> generatedOn;
  std::optional<std::string> id;
  std::optional<std::string> name;
  std::optional<std::string> description;
  std::optional<std::string> tenantId;
  std::optional<std::string> platform;
  std::optional<std::string> status;
  std::optional<std::int64_t> version;
  std::optional<std::string> logoBase64;
  /// Access token for the consent upload ("x-auth-token").
  std::optional<std::string> token;
  std::optional<std::string> sdkVersion;
  std::optional<std::vector<Purpose>> purposes;
  std::optional<std::vector<AppPermission>> permissions;
  std::optional<ConsentBannerConfig> bannerConfig;
  std::optional<Translations> translations;  ///< "i18n"
  std::optional<bool> isATTEnabled;          ///< "is_att_enabled"
  std::optional<ATTConfig> attConfig;        ///< "att_or_gad_config"
  std::optional<SettingsPrompt> settingPrompt;  ///< "settings_prompt"
  std::optional<bool> reConsentEnabled;
  std::optional<bool> isSettingsPromptEnabled;  ///< "is_sp_enabled"
  std::optional<bool> isGcmEnabled;
  std::optional<GcmConfig> gcmConfig;
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

/// Equal records hash equally.
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
