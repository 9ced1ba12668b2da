#include "bench/ConfigurationDocument.h"

#include <array>
#include <cstdint>
#include <map>
#include <random>

#include "core/Json/Codec.h"
#include "quillon/MainConfiguration.h"

namespace quillon::bench {
namespace {

constexpr std::array kLanguages = {"de", "en", "es", "fr", "it", "ja", "nl", "pl"};

class Author {
 public:
  std::string words(std::size_t count, std::string_view language) {
    static constexpr std::array kLatin = {"consent", "data",   "wir",      "für",  "your", "choice", "préférences",
                                          "the",     "cookie", "Anbieter", "dati", "of",   "and",    "privacy"};
    static constexpr std::array kJapanese = {"同意", "データ", "設定", "プライバシー", "の", "選択"};
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
      if (i > 0) text += ' ';
      text += language == "ja" ? kJapanese[random_() % kJapanese.size()] : kLatin[random_() % kLatin.size()];
    }
    return text;
  }

  LocalizedText localized(std::size_t count) {
    LocalizedText text;
    for (const char* language : kLanguages) text[language] = words(count, language);
    return text;
  }

  LocalizedText html(std::size_t count) {
    LocalizedText text;
    for (const char* language : kLanguages) {
      text[language] = "<p class=\"lead\">" + words(count, language) + "</p>\n<a href=\"https://example.org/\">" +
                       words(3, language) + "</a>\n";
    }
    return text;
  }

  std::string base64(std::size_t size) {
    static constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text(size, ' ');
    for (char& c : text) c = kDigits[random_() % kDigits.size()];
    return text;
  }

  std::int64_t number() { return static_cast<std::int64_t>(random_() % 100'000); }

 private:
  std::mt19937 random_{7};
};

SDK component(Author& author) {
  SDK sdk;
  sdk.sdkId = author.number();
  sdk.namespaceId = "org.example." + author.base64(12);
  sdk.sdkName = author.localized(2);
  sdk.sdkDescription = author.localized(12);
  sdk.vendor = author.words(2, "en");
  sdk.logoBase64 = author.base64(1200);
  sdk.website = "https://example.org/" + author.base64(8);
  sdk.matchedBy = {author.words(1, "en"), author.words(1, "en")};
  sdk.collectingData = true;
  sdk.releaseDate = "2024-02-29";
  sdk.license = "Apache-2.0";
  return sdk;
}

BannerConfig banner(Author& author) {
  BannerConfig banner;
  banner.hideCloseButton = banner.hideAcceptButton = banner.embedDSRPortalLink = true;
  banner.recordConsentUponAppStart = banner.hideToggleForEssentialCategories = false;
  banner.name = author.words(2, "en");
  banner.dsrPortalLink = "https://example.org/portal";
  banner.complianceType = ComplianceType::optIn;
  banner.bannerReappearanceTime = "12 month";
  banner.privacyNoticeLink = "https://example.org/privacy";
  banner.accept = author.localized(1);
  banner.reject = author.localized(1);
  banner.bannerText = author.html(60);
  banner.bannerHeading = author.localized(4);
  banner.sdkTabHeading = author.localized(2);
  banner.privacyNoticeText = author.localized(2);
  banner.preferenceCenterLink = author.localized(2);
  banner.permissionsTabHeading = author.localized(2);
  banner.permissionsTabGuidance = author.html(20);
  banner.preferenceCenterHeading = author.localized(3);
  banner.preferenceCenterGuidance = author.html(20);
  banner.permissionsTabDescription = author.html(30);
  banner.preferenceCenterDescription = author.html(40);
  banner.showPoweredByQuillonLogo = banner.showDescriptionTextWithPrefCenterToggle = true;
  banner.paletteTheme = 3;
  banner.bannerPosition = BannerPosition::bottom;
  banner.buttonShape = ButtonShape::pill;
  banner.companyLogo = author.base64(30'000);
  banner.customPaletteTheme = CustomColors{"#1A2B3C", "#ffffff", "#000000", "#eeeeee", "#222222", "#0000ff",
                                           "#cccccc", "#123456", "#654321", "#abcdef", "#010101", "#fefefe"};
  banner.shouldShowSettingsPrompt = true;
  return banner;
}

DefaultMapping mapping() {
  return {.analyticsStorage = {{1, 2}}, .adStorage = {{3}}, .adUserData = {{3, 4}}, .adPersonalization = {{5}}};
}

}  // namespace

std::string largeConfigurationDocument() {
  Author author;
  MainConfiguration configuration;
  configuration.generatedOn = 1'700'000'000;
  configuration.id = author.base64(24);
  configuration.name = author.words(3, "en");
  configuration.description = author.words(20, "en");
  configuration.tenantId = author.base64(24);
  configuration.platform = "ios";
  configuration.status = "published";
  configuration.version = 42;
  configuration.logoBase64 = author.base64(30'000);
  configuration.token = author.base64(200);
  configuration.sdkVersion = "1.2.3";
  configuration.purposes.emplace();
  for (std::int64_t id = 1; id <= 12; ++id) {
    Purpose& purpose = configuration.purposes->emplace_back();
    purpose.purposeId = id;
    purpose.purposeName = author.localized(2);
    purpose.purposeDescription = author.localized(40);
    purpose.sdks.emplace();
    for (int i = 0; i < 39; ++i) purpose.sdks->push_back(component(author));
    purpose.consentStatus = ConsentStatus::notDetermined;
    purpose.disableOptOut = id == 1;
    purpose.optOutText = author.localized(6);
    purpose.hideDetails = false;
  }
  configuration.permissions.emplace();
  for (int number = 0; number < static_cast<int>(VantariKey::custom); ++number) {
    AppPermission& permission = configuration.permissions->emplace_back();
    permission.id = number;
    permission.permissionId = VantariKey(static_cast<VantariKey::Case>(number));
    permission.name = author.words(2, "en");
    permission.description = author.localized(15);
    permission.group = author.words(1, "en");
    permission.groupId = number / 4;
    permission.consentStatus = ConsentStatus::notDetermined;
    permission.nameMap = author.localized(2);
  }
  configuration.bannerConfig.emplace();
  for (const char* category : {"default", "gdpr", "ccpa", "lgpd", "pipeda", "other"}) {
    configuration.bannerConfig->categories[category] = banner(author);
    configuration.bannerConfig->namesMap[author.base64(10)] = category;
  }
  for (int i = 0; i < 60; ++i) configuration.bannerConfig->locations["US#" + std::to_string(i)] = "ccpa";
  configuration.translations.emplace();
  for (const char* language : kLanguages) {
    LocalizedText texts;
    for (int i = 0; i < 150; ++i) texts["text_key_" + std::to_string(i)] = author.words(4, language);
    (*configuration.translations)[language] = std::move(texts);
  }
  configuration.isATTEnabled = true;
  configuration.attConfig =
      ATTConfig{.showInfoOnPrefCenter = true, .purposeIds = {{3, 4}}, .infoText = author.localized(20)};
  configuration.settingPrompt = SettingsPrompt{.promptHeading = author.localized(3),
                                               .promptMessage = author.localized(20),
                                               .settingsButtonText = author.localized(1),
                                               .notNowButtonText = author.localized(2),
                                               .permissions = {{{"NSCameraUsageDescription", true}}}};
  configuration.reConsentEnabled = configuration.isSettingsPromptEnabled = configuration.isGcmEnabled = true;
  configuration.gcmConfig.emplace();
  configuration.gcmConfig->showGcmDescription = true;
  configuration.gcmConfig->gcmDescription = author.localized(30);
  configuration.gcmConfig->defaultMapping = mapping();
  configuration.gcmConfig->regionOverrides.emplace();
  for (int i = 0; i < 50; ++i) (*configuration.gcmConfig->regionOverrides)["US#" + std::to_string(i)] = mapping();
  return encode(configuration);
}

}  // namespace quillon::bench
