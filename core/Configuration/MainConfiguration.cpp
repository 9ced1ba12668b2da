#include "quillon/MainConfiguration.h"

#include "core/Json/JsonMapping.h"
#include "core/Json/Record.h"

namespace quillon {

template <>
inline constexpr auto fields<SDK> = std::tuple{
    Field<&SDK::sdkId>{"sdk_id"},
    Field<&SDK::namespaceId>{"namespace_id"},
    Field<&SDK::sdkName>{"sdk_name"},
    Field<&SDK::sdkDescription>{"sdk_description"},
    Field<&SDK::vendor>{"vendor"},
    Field<&SDK::logoBase64>{"logo_base64"},
    Field<&SDK::website>{"website"},
    Field<&SDK::matchedBy>{"matched_by"},
    Field<&SDK::collectingData>{"collecting_data"},
    Field<&SDK::releaseDate>{"release_date"},
    Field<&SDK::license>{"license"},
};

template <>
inline constexpr auto fields<Purpose> = std::tuple{
    Field<&Purpose::purposeId>{"purpose_id"},
    Field<&Purpose::purposeName>{"purpose_name"},
    Field<&Purpose::purposeDescription>{"purpose_description"},
    Field<&Purpose::sdks>{"sdks"},
    Field<&Purpose::consentStatus>{"consent_status"},
    Field<&Purpose::disableOptOut>{"disable_opt_out"},
    Field<&Purpose::optOutText>{"opt_out_text"},
    Field<&Purpose::hideDetails>{"hide_details"},
    NotInDocument<&Purpose::isATTMapped>{},
    NotInDocument<&Purpose::attDescription>{},
    NotInDocument<&Purpose::isOptedOutBySignal>{},
};

template <>
inline constexpr auto fields<AppPermission> = std::tuple{
    Field<&AppPermission::id>{"id"},
    Field<&AppPermission::name>{"name"},
    Field<&AppPermission::permissionId>{"permission_id"},
    Field<&AppPermission::description>{"description"},
    Field<&AppPermission::group>{"group"},
    Field<&AppPermission::groupId>{"group_id"},
    Field<&AppPermission::consentStatus>{"consent_status"},
    Field<&AppPermission::nameMap>{"nameI18N"},
    NotInDocument<&AppPermission::isSettingsPromptEnabled>{},
};

template <>
inline constexpr auto fields<ATTConfig> = std::tuple{
    Field<&ATTConfig::showInfoOnPrefCenter>{"show_info_on_pref_center"},
    Field<&ATTConfig::purposeIds>{"purpose_ids"},
    Field<&ATTConfig::infoText>{"info_text"},
};

template <>
inline constexpr auto fields<SettingsPrompt> = std::tuple{
    Field<&SettingsPrompt::promptHeading>{"prompt_heading"},
    Field<&SettingsPrompt::promptMessage>{"prompt_message"},
    Field<&SettingsPrompt::settingsButtonText>{"settings_button_text"},
    Field<&SettingsPrompt::notNowButtonText>{"not_now_button_text"},
    Field<&SettingsPrompt::permissions>{"permissions"},
};

template <>
inline constexpr auto fields<DefaultMapping> = std::tuple{
    Field<&DefaultMapping::analyticsStorage>{"analytics_storage"},
    Field<&DefaultMapping::adStorage>{"ad_storage"},
    Field<&DefaultMapping::adUserData>{"ad_user_data"},
    Field<&DefaultMapping::adPersonalization>{"ad_personalization"},
};

template <>
inline constexpr auto fields<GcmConfig> = std::tuple{
    Field<&GcmConfig::showGcmDescription>{"show_gcm_description"},
    Field<&GcmConfig::gcmDescription>{"gcm_description"},
    Field<&GcmConfig::defaultMapping>{"default_mapping"},
    Field<&GcmConfig::regionOverrides>{"region_overrides"},
};

template <>
inline constexpr auto fields<MainConfiguration> = std::tuple{
    Field<&MainConfiguration::generatedOn>{"generated_on"},
    Field<&MainConfiguration::id>{"id"},
    Field<&MainConfiguration::name>{"name"},
    Field<&MainConfiguration::description>{"description"},
    Field<&MainConfiguration::tenantId>{"tenant_id"},
    Field<&MainConfiguration::platform>{"platform"},
    Field<&MainConfiguration::status>{"status"},
    Field<&MainConfiguration::version>{"version"},
    Field<&MainConfiguration::logoBase64>{"logo_base64"},
    Field<&MainConfiguration::token>{"x-auth-token"},
    Field<&MainConfiguration::sdkVersion>{"sdk_version"},
    Field<&MainConfiguration::purposes>{"purposes"},
    Field<&MainConfiguration::permissions>{"permissions"},
    Field<&MainConfiguration::bannerConfig>{"banner_config"},
    Field<&MainConfiguration::translations>{"i18n"},
    Field<&MainConfiguration::isATTEnabled>{"is_att_enabled"},
    Field<&MainConfiguration::attConfig>{"att_or_gad_config"},
    Field<&MainConfiguration::settingPrompt>{"settings_prompt"},
    Field<&MainConfiguration::reConsentEnabled>{"re_consent_enabled"},
    Field<&MainConfiguration::isSettingsPromptEnabled>{"is_sp_enabled"},
    Field<&MainConfiguration::isGcmEnabled>{"is_gcm_enabled"},
    Field<&MainConfiguration::gcmConfig>{"gcm_config"},
    Field<&MainConfiguration::privacySignalPurposes>{"privacy_signal_purposes"},
};

bool operator==(const SDK& left, const SDK& right) {
  return equalFields(left, right);
}
bool operator==(const Purpose& left, const Purpose& right) {
  return equalFields(left, right);
}
bool operator==(const AppPermission& left, const AppPermission& right) {
  return equalFields(left, right);
}
bool operator==(const ATTConfig& left, const ATTConfig& right) {
  return equalFields(left, right);
}
bool operator==(const SettingsPrompt& left, const SettingsPrompt& right) {
  return equalFields(left, right);
}
bool operator==(const DefaultMapping& left, const DefaultMapping& right) {
  return equalFields(left, right);
}
bool operator==(const GcmConfig& left, const GcmConfig& right) {
  return equalFields(left, right);
}
bool operator==(const MainConfiguration& left, const MainConfiguration& right) {
  return equalFields(left, right);
}

extern template const JsonType& jsonType<ConsentBannerConfig>();

template const JsonType& jsonType<Purpose>();
template const JsonType& jsonType<AppPermission>();
template const JsonType& jsonType<SettingsPrompt>();
template const JsonType& jsonType<GcmConfig>();
template const JsonType& jsonType<MainConfiguration>();

}  // namespace quillon

std::size_t std::hash<quillon::SDK>::operator()(const quillon::SDK& record) const {
  return quillon::hashFields(record);
}

std::size_t std::hash<quillon::Purpose>::operator()(const quillon::Purpose& record) const {
  return quillon::hashFields(record);
}

std::size_t std::hash<quillon::AppPermission>::operator()(const quillon::AppPermission& record) const {
  return quillon::hashFields(record);
}

std::size_t std::hash<quillon::ATTConfig>::operator()(const quillon::ATTConfig& record) const {
  return quillon::hashFields(record);
}

std::size_t std::hash<quillon::SettingsPrompt>::operator()(const quillon::SettingsPrompt& record) const {
  return quillon::hashFields(record);
}

std::size_t std::hash<quillon::DefaultMapping>::operator()(const quillon::DefaultMapping& record) const {
  return quillon::hashFields(record);
}

std::size_t std::hash<quillon::GcmConfig>::operator()(const quillon::GcmConfig& record) const {
  return quillon::hashFields(record);
}

std::size_t std::hash<quillon::MainConfiguration>::operator()(const quillon::MainConfiguration& record) const {
  return quillon::hashFields(record);
}
