// The keys of each structure in document order, for the compared readers and writers, which saves them a search.
#pragma once

#include <concepts>
#include <type_traits>

#include "quillon/MainConfiguration.h"

namespace quillon::bench {

template <class R, class T>
concept Either = std::same_as<std::remove_const_t<R>, T>;  // const-qualified or not

template <class Object, Either<CustomColors> R>
void visitFields(Object& object, R& record) {
  object.field("button_background", record.buttonBackground);
  object.field("button_text", record.buttonText);
  object.field("button_border", record.buttonBorder);
  object.field("banner_background", record.bannerBackground);
  object.field("banner_text", record.bannerText);
  object.field("banner_links", record.bannerLinks);
  object.field("preference_center_footer_background", record.preferenceCenterFooterBackground);
  object.field("preference_center_footer_selector", record.preferenceCenterFooterSelector);
  object.field("toggle_primary", record.togglePrimarycolor);
  object.field("toggle_secondary", record.toggleSecondarycolor);
  object.field("purpose_disclaimer_text", record.purposeDisclaimerTextColor);
  object.field("purpose_disclaimer_background", record.purposeDisclaimerBackgroundColor);
}

template <class Object, Either<BannerConfig> R>
void visitFields(Object& object, R& record) {
  object.field("hide_close_button", record.hideCloseButton);
  object.field("hide_accept_toggle", record.hideAcceptButton);
  object.field("embed_dsr_portal_link", record.embedDSRPortalLink);
  object.field("record_consent_upon_app_start", record.recordConsentUponAppStart);
  object.field("hide_toggle_for_essential_categories", record.hideToggleForEssentialCategories);
  object.field("name", record.name);
  object.field("dsr_portal_link", record.dsrPortalLink);
  object.field("compliance_type", record.complianceType);
  object.field("banner_reappearance_time", record.bannerReappearanceTime);
  object.field("privacy_notice_link", record.privacyNoticeLink);
  object.field("accept", record.accept);
  object.field("reject", record.reject);
  object.field("banner_text", record.bannerText);
  object.field("banner_heading", record.bannerHeading);
  object.field("sdk_tab_heading", record.sdkTabHeading);
  object.field("privacy_notice_text", record.privacyNoticeText);
  object.field("preference_center_link", record.preferenceCenterLink);
  object.field("permissions_tab_heading", record.permissionsTabHeading);
  object.field("permissions_tab_guidance", record.permissionsTabGuidance);
  object.field("preference_center_heading", record.preferenceCenterHeading);
  object.field("preference_center_guidance", record.preferenceCenterGuidance);
  object.field("permissions_tab_description", record.permissionsTabDescription);
  object.field("preference_center_description", record.preferenceCenterDescription);
  object.field("show_powered_by_quillon_logo", record.showPoweredByQuillonLogo);
  object.field("show_description_text_with_preference_center_toggle", record.showDescriptionTextWithPrefCenterToggle);
  object.field("palette_theme", record.paletteTheme);
  object.field("banner_position", record.bannerPosition);
  object.field("button_shape", record.buttonShape);
  object.field("company_logo", record.companyLogo);
  object.field("palette", record.customPaletteTheme);
  object.field("should_show_settings_prompt", record.shouldShowSettingsPrompt);
}

template <class Object, Either<ConsentBannerConfig> R>
void visitFields(Object& object, R& record) {
  object.field("categories", record.categories);
  object.field("names_map", record.namesMap);
  object.field("locations", record.locations);
}

template <class Object, Either<SDK> R>
void visitFields(Object& object, R& record) {
  object.field("sdk_id", record.sdkId);
  object.field("namespace_id", record.namespaceId);
  object.field("sdk_name", record.sdkName);
  object.field("sdk_description", record.sdkDescription);
  object.field("vendor", record.vendor);
  object.field("logo_base64", record.logoBase64);
  object.field("website", record.website);
  object.field("matched_by", record.matchedBy);
  object.field("collecting_data", record.collectingData);
  object.field("release_date", record.releaseDate);
  object.field("license", record.license);
}

template <class Object, Either<Purpose> R>
void visitFields(Object& object, R& record) {
  object.field("purpose_id", record.purposeId);
  object.field("purpose_name", record.purposeName);
  object.field("purpose_description", record.purposeDescription);
  object.field("sdks", record.sdks);
  object.field("consent_status", record.consentStatus);
  object.field("disable_opt_out", record.disableOptOut);
  object.field("opt_out_text", record.optOutText);
  object.field("hide_details", record.hideDetails);
}

template <class Object, Either<AppPermission> R>
void visitFields(Object& object, R& record) {
  object.field("id", record.id);
  object.field("name", record.name);
  object.field("permission_id", record.permissionId);
  object.field("description", record.description);
  object.field("group", record.group);
  object.field("group_id", record.groupId);
  object.field("consent_status", record.consentStatus);
  object.field("nameI18N", record.nameMap);
}

template <class Object, Either<ATTConfig> R>
void visitFields(Object& object, R& record) {
  object.field("show_info_on_pref_center", record.showInfoOnPrefCenter);
  object.field("purpose_ids", record.purposeIds);
  object.field("info_text", record.infoText);
}

template <class Object, Either<SettingsPrompt> R>
void visitFields(Object& object, R& record) {
  object.field("prompt_heading", record.promptHeading);
  object.field("prompt_message", record.promptMessage);
  object.field("settings_button_text", record.settingsButtonText);
  object.field("not_now_button_text", record.notNowButtonText);
  object.field("permissions", record.permissions);
}

template <class Object, Either<DefaultMapping> R>
void visitFields(Object& object, R& record) {
  object.field("analytics_storage", record.analyticsStorage);
  object.field("ad_storage", record.adStorage);
  object.field("ad_user_data", record.adUserData);
  object.field("ad_personalization", record.adPersonalization);
}

template <class Object, Either<GcmConfig> R>
void visitFields(Object& object, R& record) {
  object.field("show_gcm_description", record.showGcmDescription);
  object.field("gcm_description", record.gcmDescription);
  object.field("default_mapping", record.defaultMapping);
  object.field("region_overrides", record.regionOverrides);
}

template <class Object, Either<MainConfiguration> R>
void visitFields(Object& object, R& record) {
  object.field("generated_on", record.generatedOn);
  object.field("id", record.id);
  object.field("name", record.name);
  object.field("description", record.description);
  object.field("tenant_id", record.tenantId);
  object.field("platform", record.platform);
  object.field("status", record.status);
  object.field("version", record.version);
  object.field("logo_base64", record.logoBase64);
  object.field("x-auth-token", record.token);
  object.field("sdk_version", record.sdkVersion);
  object.field("purposes", record.purposes);
  object.field("permissions", record.permissions);
  object.field("banner_config", record.bannerConfig);
  object.field("i18n", record.translations);
  object.field("is_att_enabled", record.isATTEnabled);
  object.field("att_or_gad_config", record.attConfig);
  object.field("settings_prompt", record.settingPrompt);
  object.field("re_consent_enabled", record.reConsentEnabled);
  object.field("is_sp_enabled", record.isSettingsPromptEnabled);
  object.field("is_gcm_enabled", record.isGcmEnabled);
  object.field("gcm_config", record.gcmConfig);
}

}  // namespace quillon::bench
