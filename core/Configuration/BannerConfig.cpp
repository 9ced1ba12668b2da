#include "quillon/BannerConfig.h"

#include <cstdint>

#include "core/Json/JsonMapping.h"
#include "core/Json/RawValues.h"
#include "core/Json/Record.h"
#include "core/Text/Ascii.h"

namespace quillon {

QUILLON_RAW_VALUES(ComplianceType, {ComplianceType::noticeOnly, "notice-only"}, {ComplianceType::optIn, "opt-in"},
                   {ComplianceType::optOut, "opt-out"});

QUILLON_RAW_VALUES(BannerPosition, {BannerPosition::bottom, "bottom"}, {BannerPosition::center, "center"});

QUILLON_RAW_VALUES(ButtonShape, {ButtonShape::rounded, "rounded"}, {ButtonShape::square, "square"},
                   {ButtonShape::pill, "pill"}, {ButtonShape::outlined, "outlined"},
                   {ButtonShape::edgeless, "edgeless"});

Color colorFromText(std::string_view text) noexcept {
  std::uint32_t number = 0;
  for (const char c : text) {
    if (c == '#') continue;
    const int digit = hexValue(c);
    if (digit < 0) break;
    // Only the low 24 bits are used, so overflow is harmless.
    number = (number << 4) + static_cast<std::uint32_t>(digit);
  }
  const auto component = [number](int bit) { return static_cast<double>((number >> bit) & 0xFF) / 255; };
  return {.red = component(16), .green = component(8), .blue = component(0)};
}

template <>
inline constexpr auto fields<CustomColors> = std::tuple{
    Field<&CustomColors::buttonBackground>{"button_background"},
    Field<&CustomColors::buttonText>{"button_text"},
    Field<&CustomColors::buttonBorder>{"button_border"},
    Field<&CustomColors::bannerBackground>{"banner_background"},
    Field<&CustomColors::bannerText>{"banner_text"},
    Field<&CustomColors::bannerLinks>{"banner_links"},
    Field<&CustomColors::preferenceCenterFooterBackground>{"preference_center_footer_background"},
    Field<&CustomColors::preferenceCenterFooterSelector>{"preference_center_footer_selector"},
    Field<&CustomColors::togglePrimarycolor>{"toggle_primary"},
    Field<&CustomColors::toggleSecondarycolor>{"toggle_secondary"},
    Field<&CustomColors::purposeDisclaimerTextColor>{"purpose_disclaimer_text"},
    Field<&CustomColors::purposeDisclaimerBackgroundColor>{"purpose_disclaimer_background"},
};

template <>
inline constexpr auto fields<BannerConfig> = std::tuple{
    Field<&BannerConfig::hideCloseButton>{"hide_close_button"},
    Field<&BannerConfig::hideAcceptButton>{"hide_accept_toggle"},
    Field<&BannerConfig::embedDSRPortalLink>{"embed_dsr_portal_link"},
    Field<&BannerConfig::recordConsentUponAppStart>{"record_consent_upon_app_start"},
    Field<&BannerConfig::hideToggleForEssentialCategories>{"hide_toggle_for_essential_categories"},
    Field<&BannerConfig::name>{"name"},
    Field<&BannerConfig::dsrPortalLink>{"dsr_portal_link"},
    Field<&BannerConfig::complianceType>{"compliance_type"},
    Field<&BannerConfig::bannerReappearanceTime>{"banner_reappearance_time"},
    Field<&BannerConfig::privacyNoticeLink>{"privacy_notice_link"},
    Field<&BannerConfig::accept>{"accept"},
    Field<&BannerConfig::reject>{"reject"},
    Field<&BannerConfig::bannerText>{"banner_text"},
    Field<&BannerConfig::bannerHeading>{"banner_heading"},
    Field<&BannerConfig::sdkTabHeading>{"sdk_tab_heading"},
    Field<&BannerConfig::privacyNoticeText>{"privacy_notice_text"},
    Field<&BannerConfig::preferenceCenterLink>{"preference_center_link"},
    Field<&BannerConfig::permissionsTabHeading>{"permissions_tab_heading"},
    Field<&BannerConfig::permissionsTabGuidance>{"permissions_tab_guidance"},
    Field<&BannerConfig::preferenceCenterHeading>{"preference_center_heading"},
    Field<&BannerConfig::preferenceCenterGuidance>{"preference_center_guidance"},
    Field<&BannerConfig::permissionsTabDescription>{"permissions_tab_description"},
    Field<&BannerConfig::preferenceCenterDescription>{"preference_center_description"},
    Field<&BannerConfig::showPoweredByQuillonLogo>{"show_powered_by_quillon_logo"},
    Field<&BannerConfig::showDescriptionTextWithPrefCenterToggle>{
        "show_description_text_with_preference_center_toggle"},
    Field<&BannerConfig::paletteTheme>{"palette_theme"},
    Field<&BannerConfig::bannerPosition>{"banner_position"},
    Field<&BannerConfig::buttonShape>{"button_shape"},
    Field<&BannerConfig::companyLogo>{"company_logo"},
    Field<&BannerConfig::customPaletteTheme>{"palette"},
    Field<&BannerConfig::shouldShowSettingsPrompt>{"should_show_settings_prompt"},
    NotInDocument<&BannerConfig::translations>{},
};

template <>
inline constexpr auto fields<ConsentBannerConfig> = std::tuple{
    Field<&ConsentBannerConfig::categories>{"categories"},
    Field<&ConsentBannerConfig::namesMap>{"names_map"},
    Field<&ConsentBannerConfig::locations>{"locations"},
};

bool operator==(const CustomColors& left, const CustomColors& right) {
  return equalFields(left, right);
}
bool operator==(const BannerConfig& left, const BannerConfig& right) {
  return equalFields(left, right);
}
bool operator==(const ConsentBannerConfig& left, const ConsentBannerConfig& right) {
  return equalFields(left, right);
}

template const JsonType& jsonType<BannerConfig>();
template const JsonType& jsonType<ConsentBannerConfig>();

}  // namespace quillon

std::size_t std::hash<quillon::CustomColors>::operator()(const quillon::CustomColors& record) const {
  return quillon::hashFields(record);
}

std::size_t std::hash<quillon::BannerConfig>::operator()(const quillon::BannerConfig& record) const {
  return quillon::hashFields(record);
}

std::size_t std::hash<quillon::ConsentBannerConfig>::operator()(const quillon::ConsentBannerConfig& record) const {
  return quillon::hashFields(record);
}
