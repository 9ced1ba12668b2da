#include "tools/validate/LocalizedTexts.h"

namespace quillon::tools {
namespace {

template <class Record>
struct Text {
  std::string_view key;
  std::optional<LocalizedText> Record::* member;
};

constexpr Text<Purpose> purposeTexts[] = {{"purpose_name", &Purpose::purposeName},
                                          {"purpose_description", &Purpose::purposeDescription},
                                          {"opt_out_text", &Purpose::optOutText}};
constexpr Text<SDK> sdkTexts[] = {{"sdk_name", &SDK::sdkName}, {"sdk_description", &SDK::sdkDescription}};
constexpr Text<AppPermission> permissionTexts[] = {{"description", &AppPermission::description},
                                                   {"nameI18N", &AppPermission::nameMap}};
constexpr Text<ATTConfig> trackingTexts[] = {{"info_text", &ATTConfig::infoText}};
constexpr Text<SettingsPrompt> promptTexts[] = {{"prompt_heading", &SettingsPrompt::promptHeading},
                                                {"prompt_message", &SettingsPrompt::promptMessage},
                                                {"settings_button_text", &SettingsPrompt::settingsButtonText},
                                                {"not_now_button_text", &SettingsPrompt::notNowButtonText}};
constexpr Text<GcmConfig> consentModeTexts[] = {{"gcm_description", &GcmConfig::gcmDescription}};
constexpr Text<BannerConfig> bannerTexts[] = {
    {"accept", &BannerConfig::accept},
    {"reject", &BannerConfig::reject},
    {"banner_text", &BannerConfig::bannerText},
    {"banner_heading", &BannerConfig::bannerHeading},
    {"sdk_tab_heading", &BannerConfig::sdkTabHeading},
    {"privacy_notice_text", &BannerConfig::privacyNoticeText},
    {"preference_center_link", &BannerConfig::preferenceCenterLink},
    {"permissions_tab_heading", &BannerConfig::permissionsTabHeading},
    {"permissions_tab_guidance", &BannerConfig::permissionsTabGuidance},
    {"preference_center_heading", &BannerConfig::preferenceCenterHeading},
    {"preference_center_guidance", &BannerConfig::preferenceCenterGuidance},
    {"permissions_tab_description", &BannerConfig::permissionsTabDescription},
    {"preference_center_description", &BannerConfig::preferenceCenterDescription}};

template <class Record, std::size_t count>
void visitTexts(const Record& record, const Text<Record> (&texts)[count], const DocumentPath& path,
                const VisitText& visit) {
  for (const auto& [key, member] : texts) {
    if (const auto& text = record.*member) visit(path.at(key), *text);
  }
}

}  // namespace

void forEachText(const MainConfiguration& configuration, const VisitText& visit) {
  const DocumentPath root;
  if (const auto& purposes = configuration.purposes) {
    for (std::size_t i = 0; i < purposes->size(); ++i) {
      const auto& purpose = (*purposes)[i];
      const auto path = root.at("purposes").at(i);
      visitTexts(purpose, purposeTexts, path, visit);
      for (std::size_t j = 0; purpose.sdks && j < purpose.sdks->size(); ++j) {
        visitTexts((*purpose.sdks)[j], sdkTexts, path.at("sdks").at(j), visit);
      }
    }
  }
  if (const auto& permissions = configuration.permissions) {
    for (std::size_t i = 0; i < permissions->size(); ++i) {
      visitTexts((*permissions)[i], permissionTexts, root.at("permissions").at(i), visit);
    }
  }
  if (const auto& banners = configuration.bannerConfig) {
    for (const auto& [name, banner] : banners->categories) {
      visitTexts(banner, bannerTexts, root.at("banner_config").at("categories").at(name), visit);
    }
  }
  if (const auto& tracking = configuration.attConfig) {
    visitTexts(*tracking, trackingTexts, root.at("att_or_gad_config"), visit);
  }
  if (const auto& prompt = configuration.settingPrompt) {
    visitTexts(*prompt, promptTexts, root.at("settings_prompt"), visit);
  }
  if (const auto& consentMode = configuration.gcmConfig) {
    visitTexts(*consentMode, consentModeTexts, root.at("gcm_config"), visit);
  }
}

}  // namespace quillon::tools
