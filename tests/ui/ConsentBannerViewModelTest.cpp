#include "ui/ConsentBanner/ConsentBannerViewModel.h"

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "platform/memory/FixedLocale.h"
#include "tests/support/Contains.h"
#include "tests/ui/OnMainQueue.h"
#include "ui/SettingsPrompt/SettingsPromptViewModel.h"

namespace quillon::test {
namespace {

namespace json = boost::json;

struct Banner : OnMainQueue<ConsentBannerViewModel> {
  void open(std::optional<LanguageCode> language = "en") {
    world.server.serve(document);
    auto options = world.options();
    options.languageCode = std::move(language);
    world.startLater(options);
    onMain([this] {
      model = ConsentBannerViewModel::make(world.sdk->screens());
      model->loadBannerConfig();
      model->loadCompanyLogo();
      model->loadSettingsPrompt();
      EXPECT_TRUE(model->bannerConfigResult.get().isLoading());
    });
  }
  void perform(BannerAction action) {
    act([&](ViewModel& shown) { shown.perform(action); });
  }
};

TEST_F(Banner, LoadsWhatTheScreensShow) {
  bannerOf(document)["palette"] = {{"button_background", "#010203"},
                                   {"button_text", "#010203"},
                                   {"button_border", "#010203"},
                                   {"banner_background", "#010203"},
                                   {"banner_text", "#010203"},
                                   {"banner_links", "#010203"},
                                   {"preference_center_footer_background", "#010203"},
                                   {"preference_center_footer_selector", "#010203"}};
  document["logo_base64"] = "R0lGODlhAQABAAAAACw=";
  document["settings_prompt"] = {{"prompt_heading", {{"de", "Kopf"}}}, {"prompt_message", {{"en", "Message"}}}};
  open();
  act([&](ViewModel& shown) {
    EXPECT_EQ(shown.bannerConfigResult.get().value()->complianceType, ComplianceType::optIn);
    EXPECT_TRUE(shown.companyLogoResult.get().value()->has_value());
    EXPECT_EQ(world.sdk->screens()->colors()->buttonBackground, "#010203");
    const auto prompt = SettingsPromptViewModel(model, VantariKey::cameraUsageDescription).content().value();
    EXPECT_EQ(prompt.heading, "Kopf") << "the only language that it has";
    EXPECT_EQ(prompt.message, "Message");
    EXPECT_EQ(prompt.settingsButton, "Open Settings") << "a button without words is none";
  });
}

TEST_F(Banner, SaysWhatCannotBeLoaded) {
  document.erase("banner_config");
  document["logo_base64"] = "no image";
  open();
  act([&](ViewModel& shown) {
    EXPECT_EQ(*shown.bannerConfigResult.get().error(), CustomError{"Failed to Load Banner Configuration"});
    EXPECT_EQ(*shown.settingsPromptResult.get().error(), CustomError{"Failed to Load Setting Prompt"});
    EXPECT_FALSE(shown.companyLogoResult.get().value()->has_value()) << "a logo that cannot be read is no failure";
    shown.recordDefaultExplicitConsents();
  });
  EXPECT_TRUE(contains(world.log(), "Something went wrong while recording default constents explicitly."));
}

TEST_F(Banner, LabelsComeFromTheTranslationsElseFromOursElseInEnglish) {
  document["i18n"] = {{"de", {{"select_all", "Alle"}, {"close", ""}}}, {"sw", {{"close", "Funga"}}}};
  bannerOf(document)["banner_heading"] = {{"en", "Privacy"}, {"zh", "隐私"}};
  open("de");
  act([&](ViewModel& shown) {
    EXPECT_EQ(shown.label(Label::selectAll), "Alle");
    EXPECT_EQ(shown.label(Label::close), "Schließen") << "a screen never shows an empty label";
    EXPECT_EQ(shown.text(BannerAction::reject), "Ablehnen") << "the configuration names the button in no language";
  });
  open("sw");
  act([&](ViewModel& shown) {
    EXPECT_EQ(shown.label(Label::close), "Funga");
    EXPECT_EQ(shown.label(Label::essentialPurposeExplanation), "You cannot opt out from this Purpose.");
  });
  world.amend = [](Platform& platform) {
    platform.locale = std::make_shared<FixedLocale>(std::vector<std::string>{"zh-Hant-TW"});
  };
  world.onMain([this] { model.reset(); });
  world.restart();
  for (const auto& [language, reject] : {std::pair(std::optional<LanguageCode>(), "拒絕"), {"zh_Hans", "拒绝"}}) {
    open(language);
    act([&](ViewModel& shown) {
      EXPECT_EQ(shown.label(Label::reject), reject) << "the device's script unless the application names one";
      EXPECT_EQ(shown.text(shown.bannerConfig.get()->bannerHeading), "隐私");
    });
  }
}

TEST(BannerButtons, FollowTheComplianceTypeAndTheSwitches) {
  using enum BannerAction;
  using enum ComplianceType;
  const LocalizedText text{{"en", "x"}};
  const std::pair<BannerConfig, BannerButtons> cases[] = {
      {{}, {{accept}, {}, true}},
      {{.complianceType = noticeOnly}, {{accept}, {}, true}},
      {{.hideCloseButton = true, .complianceType = optIn}, {{reject, accept}, {}, false}},
      {{.complianceType = optOut}, {{reject, accept}, {}, true}},
      {{.hideAcceptButton = true, .complianceType = optOut}, {{reject}, {}, true}},
      {{.hideCloseButton = true, .hideAcceptButton = true}, {{}, {}, true}},
      {{.embedDSRPortalLink = true, .dsrPortalLink = "b", .privacyNoticeLink = "a", .preferenceCenterLink = text},
       {{accept}, {openPreferenceCenter, openPrivacyNotice, openDSRPortal}, true}},
      {{.dsrPortalLink = "b", .privacyNoticeLink = ""}, {{accept}, {}, true}},
  };
  for (const auto& [banner, expected] : cases) EXPECT_EQ(buttonsByComplianceType(banner), expected);
}

TEST_F(Banner, ActionsAnswerAndLeaveOrOpenAScreen) {
  bannerOf(document)["privacy_notice_link"] = "https://example.org/privacy";
  open();
  act([](ViewModel& shown) { shown.appeared(); });
  perform(BannerAction::openPrivacyNotice);
  perform(BannerAction::openDSRPortal);
  perform(BannerAction::openPreferenceCenter);
  EXPECT_EQ(presenter->take(), (Strings{"link https://example.org/privacy", "link ", "preferences"}));
  EXPECT_EQ(status(1), "none");
  perform(BannerAction::accept);
  EXPECT_EQ(presenter->take(), Strings{"dismiss"});
  EXPECT_EQ(status(1), "granted");
  perform(BannerAction::reject);
  EXPECT_EQ(status(1), "declined");
  EXPECT_EQ(world.text(key::consentGivenType), "CONSENT_EXPLICIT");
  EXPECT_EQ(world.uploads().size(), 2u);
}

TEST_F(Banner, RecordsTheDefaultsOnceWhenItIsClosedWithoutAnAnswer) {
  using enum TrackingAuthorization;
  const std::tuple<const char*, TrackingAuthorization, const char*> rows[] = {
      {"opt-in", denied, "declined granted declined"},
      {"opt-in", authorized, "declined granted granted"},
      {"opt-out", denied, "granted granted declined"},
      {"notice-only", notDetermined, "granted granted declined"}};
  document["purposes"].as_array()[2].as_object()["disable_opt_out"] = true;  // Tracking wins over it.
  for (const auto& [compliance, tracking, expected] : rows) {
    SCOPED_TRACE(compliance);
    world.tracking = tracking;
    bannerOf(document)["compliance_type"] = compliance;
    open();
    world.sdk->removeConsents();
    world.settle();
    const auto before = world.uploads().size();
    for (int i = 0; i < 2; ++i) perform(BannerAction::close);
    EXPECT_EQ(status(1) + " " + status(2) + " " + status(3), expected);
    EXPECT_EQ(world.text(key::consentGivenType), "CONSENT_IMPLICIT");
    ASSERT_EQ(world.uploads().size(), before + 1) << "the second time there is nothing new to send";
    const auto upload = world.uploads().back();
    EXPECT_EQ(upload.at("implicit_consent"), true);
    EXPECT_EQ(upload.at("banner_info"), compliance);
  }
}

TEST_F(Banner, DefaultsNeverReplaceADecisionNorAnswerAReconsent) {
  bannerOf(document)["record_consent_upon_app_start"] = true;
  open();
  perform(BannerAction::reject);
  world.store(key::consentGivenType, std::string(rawValue(GivenType::noAction)));  // as a newer configuration leaves it
  document["purposes"].as_array().push_back(json::object{{"purpose_id", 4}});
  bannerOf(document)["compliance_type"] = "opt-out";
  open();
  act([](ViewModel& shown) { shown.appeared(); });
  EXPECT_EQ(status(1) + " " + status(4), "declined granted");
  EXPECT_EQ(world.text(key::consentGivenType), "CONSENT_NO_ACTION");
  EXPECT_TRUE(world.sdk->isBannerDue());
}

TEST_F(Banner, OnlyTheCloseButtonOfThePromptIsRemembered) {
  open();
  using Prompt = SettingsPromptViewModel;
  for (const auto& [tap, shown] : {std::pair(&Prompt::openSettings, Strings{"settings", "dismiss"}),
                                   {&Prompt::notNow, {"dismiss"}},
                                   {&Prompt::close, {"dismiss"}}}) {
    onMain([&] {
      Prompt prompt(model, VantariKey::cameraUsageDescription);
      (prompt.*tap)();
    });
    EXPECT_EQ(presenter->take(), shown);
    EXPECT_EQ(world.stored().boolean(key::hasShownSettingsPrompt), tap == &Prompt::close);
  }
}

}  // namespace
}  // namespace quillon::test
