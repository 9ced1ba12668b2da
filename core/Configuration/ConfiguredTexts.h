// Visitors for a configuration's localized texts and links.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "quillon/MainConfiguration.h"

namespace quillon {

// A path for callers that need none.
struct NoPath {
  [[nodiscard]] NoPath at(std::string_view /*key*/) const { return {}; }
  [[nodiscard]] NoPath at(std::size_t /*index*/) const { return {}; }
};

namespace configured {

template <class Record>
struct Text {
  std::string_view key;
  std::optional<LocalizedText> Record::* member;
};

inline constexpr Text<Purpose> purposeTexts[] = {{"purpose_name", &Purpose::purposeName},
                                                 {"purpose_description", &Purpose::purposeDescription},
                                                 {"opt_out_text", &Purpose::optOutText}};
inline constexpr Text<SDK> sdkTexts[] = {{"sdk_name", &SDK::sdkName}, {"sdk_description", &SDK::sdkDescription}};
inline constexpr Text<AppPermission> permissionTexts[] = {{"description", &AppPermission::description},
                                                          {"nameI18N", &AppPermission::nameMap}};
inline constexpr Text<ATTConfig> trackingTexts[] = {{"info_text", &ATTConfig::infoText}};
inline constexpr Text<SettingsPrompt> promptTexts[] = {{"prompt_heading", &SettingsPrompt::promptHeading},
                                                       {"prompt_message", &SettingsPrompt::promptMessage},
                                                       {"settings_button_text", &SettingsPrompt::settingsButtonText},
                                                       {"not_now_button_text", &SettingsPrompt::notNowButtonText}};
inline constexpr Text<GcmConfig> consentModeTexts[] = {{"gcm_description", &GcmConfig::gcmDescription}};
inline constexpr Text<BannerConfig> bannerTexts[] = {
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

template <class Record, std::size_t count, class Path, class Visit>
void visitTexts(const Record& record, const Text<Record> (&texts)[count], const Path& path, Visit& visit) {
  for (const auto& [key, member] : texts) {
    if (const auto& text = record.*member) visit(path.at(key), *text);
  }
}

}  // namespace configured

// Calls `visit` with the path and value of every localized text present. Interface labels ("i18n") are excluded.
template <class Path, class Visit>
void forEachText(const MainConfiguration& configuration, const Path& root, Visit visit) {
  using namespace configured;
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

// Calls `visit` with the path and the unmodified value of every link present.
template <class Path, class Visit>
void forEachLink(const MainConfiguration& configuration, const Path& root, Visit visit) {
  const auto visitLink = [&visit](const std::optional<std::string>& link, const Path& path) {
    if (link) visit(path, *link);
  };
  if (const auto& purposes = configuration.purposes) {
    for (std::size_t i = 0; i < purposes->size(); ++i) {
      const auto& sdks = (*purposes)[i].sdks;
      for (std::size_t j = 0; sdks && j < sdks->size(); ++j) {
        visitLink((*sdks)[j].website, root.at("purposes").at(i).at("sdks").at(j).at("website"));
      }
    }
  }
  if (const auto& banners = configuration.bannerConfig) {
    for (const auto& [name, banner] : banners->categories) {
      const auto path = root.at("banner_config").at("categories").at(name);
      visitLink(banner.privacyNoticeLink, path.at("privacy_notice_link"));
      visitLink(banner.dsrPortalLink, path.at("dsr_portal_link"));
    }
  }
}

}  // namespace quillon
