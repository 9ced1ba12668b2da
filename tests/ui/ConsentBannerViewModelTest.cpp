#include "ui/ConsentBanner/ConsentBannerViewModel.h"

#include <gtest/gtest.h>

#include <boost/json/serialize.hpp>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "platform/memory/FixedLocale.h"
#include "platform/memory/RecordingPresenter.h"
#include "tests/support/World.h"
#include "ui/SettingsPrompt/SettingsPromptViewModel.h"

namespace quillon::test {
namespace {

namespace json = boost::json;
using namespace std::chrono_literals;
using Strings = std::vector<std::string>;

struct Banner : testing::Test {
  Banner() {
    world.amend = [this](Platform& platform) { platform.screens = presenter; };
  }
  ~Banner() override {
    if (world.sdk) world.onMain([this] { model.reset(); });
  }

  void open() {
    world.server.serve(document);
    world.start();
    world.onMain([this] { model = ConsentBannerViewModel::make(world.sdk->screens()); });
  }
  void load() {
    world.onMain([this] {
      model->loadBannerConfig();
      model->loadCompanyLogo();
      model->loadSettingsPrompt();
      EXPECT_TRUE(model->bannerConfigResult.get().isLoading());
    });
    world.settle();
  }
  void perform(BannerAction action) {
    world.onMain([&] { model->perform(action); });
    world.settle();
  }
  std::string status(int purpose) { return world.text(std::to_string(purpose)).value_or("none"); }

  json::object document = validConfiguration();
  World world;
  std::shared_ptr<RecordingPresenter> presenter = std::make_shared<RecordingPresenter>();
  std::shared_ptr<ConsentBannerViewModel> model;
};

TEST_F(Banner, LoadsWhatTheScreensShow) {
  auto& palette = bannerOf(document)["palette"].emplace_object();
  for (const auto* color :
       {"button_background", "button_text", "button_border", "banner_background", "banner_text", "banner_links",
        "preference_center_footer_background", "preference_center_footer_selector"}) {
    palette[color] = "#010203";
  }
  document["logo_base64"] = "R0lGODlhAQABAAAAACw=";
  document["settings_prompt"] = {{"prompt_heading", {{"de", "Kopf"}}}, {"prompt_message", {{"en", "Message"}}}};
  open();
  load();
  world.onMain([&] {
    ASSERT_TRUE(model->bannerConfigResult.get().value());
    EXPECT_EQ(model->bannerConfigResult.get().value()->complianceType, ComplianceType::optIn);
    EXPECT_TRUE(model->bannerConfig.get());
    ASSERT_TRUE(model->companyLogoResult.get().value());
    EXPECT_TRUE(*model->companyLogoResult.get().value());
    EXPECT_EQ(world.sdk->screens()->colors()->buttonBackground, "#010203");
    const SettingsPromptViewModel prompt(model, VantariKey::cameraUsageDescription);
    ASSERT_TRUE(prompt.content());
    EXPECT_EQ(prompt.content()->heading, "Kopf") << "the only language that it has";
    EXPECT_EQ(prompt.content()->message, "Message");
    EXPECT_EQ(prompt.content()->settingsButton, "Open Settings") << "a button without words is none";
    EXPECT_EQ(prompt.content()->notNowButton, "Not Now");
  });
}

TEST_F(Banner, SaysWhatCannotBeLoaded) {
  document.erase("banner_config");
  document["logo_base64"] = "no image";
  open();
  load();
  world.onMain([&] {
    EXPECT_EQ(*model->bannerConfigResult.get().error(), CustomError{"Failed to Load Banner Configuration"});
    EXPECT_EQ(*model->settingsPromptResult.get().error(), CustomError{"Failed to Load Setting Prompt"});
    ASSERT_TRUE(model->companyLogoResult.get().value()) << "a logo that cannot be read is no failure";
    EXPECT_FALSE(*model->companyLogoResult.get().value());
  });
}

TEST_F(Banner, ReleasedWhileLoadingHearsNothing) {
  open();
  world.onMain([&] {
    model->loadBannerConfig();
    model.reset();
  });
  world.settle();
}

TEST_F(Banner, LabelsComeFromTheTranslationsElseFromOursElseInEnglish) {
  document["i18n"] = {{"de", {{"select_all", "Alle"}, {"close", ""}}}, {"sw", {{"close", "Funga"}}}};
  open();
  const auto speak = [&](const char* language) {
    auto options = world.options();
    options.languageCode = language;
    world.start(options);
  };
  speak("de");
  world.onMain([&] { EXPECT_EQ(model->label(Label::selectAll), "Select All") << "nothing is loaded yet"; });
  load();
  world.onMain([&] {
    EXPECT_EQ(model->label(Label::selectAll), "Alle");
    EXPECT_EQ(model->label(Label::close), "Schließen") << "a screen never shows an empty label";
    EXPECT_EQ(model->text(BannerAction::reject), "Ablehnen") << "the configuration names the button in no language";
  });
  speak("sw");
  load();
  world.onMain([&] {
    EXPECT_EQ(model->label(Label::close), "Funga");
    EXPECT_EQ(model->label(Label::attManagedPurposeExplanation),
              "You can't toggle this Purpose because it\xE2\x80\x99s managed by Apple's App Tracking Transparency "
              "framework.");
  });
}

TEST_F(Banner, TheDevicesScriptChoosesAmongOursUnlessTheApplicationNamesOne) {
  bannerOf(document)["banner_heading"] = {{"en", "Privacy"}, {"zh", "隐私"}};
  world.amend = [](Platform& platform) {
    platform.locale = std::make_shared<FixedLocale>(std::vector<std::string>{"zh-Hant-TW"});
  };
  open();
  auto options = world.options();
  options.languageCode = std::nullopt;
  world.start(options);
  load();
  world.onMain([&] {
    EXPECT_EQ(model->label(Label::reject), "拒絕");
    EXPECT_EQ(model->text(model->bannerConfig.get()->bannerHeading), "隐私");
  });
  options.languageCode = "zh_Hans";
  world.start(options);
  load();
  world.onMain([&] { EXPECT_EQ(model->label(Label::reject), "拒绝"); });
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
  for (const auto& [banner, expected] : cases) {
    EXPECT_EQ(buttonsByComplianceType(banner), expected);
  }
}

TEST_F(Banner, ActionsAnswerAndLeaveOrOpenAScreen) {
  bannerOf(document)["privacy_notice_link"] = "https://example.org/privacy";
  open();
  load();
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

struct UnansweredBanner : Banner,
                          testing::WithParamInterface<std::tuple<const char*, TrackingAuthorization, Strings>> {};

TEST_P(UnansweredBanner, RecordsTheDefaultsOnceWhenItIsClosed) {
  const auto& [compliance, tracking, expected] = GetParam();
  world.tracking = tracking;
  bannerOf(document)["compliance_type"] = compliance;
  document["purposes"].as_array()[2].as_object()["disable_opt_out"] = true;  // Tracking wins over it.
  open();
  load();
  perform(BannerAction::close);
  EXPECT_EQ((Strings{status(1), status(2), status(3)}), expected);
  EXPECT_EQ(world.text(key::consentGivenType), "CONSENT_IMPLICIT");
  ASSERT_EQ(world.uploads().size(), 1u);
  const auto upload = world.uploads().back();
  EXPECT_EQ(upload.at("implicit_consent"), true);
  EXPECT_EQ(upload.at("banner_info"), compliance);
  EXPECT_EQ(upload.at("ad_id"), tracking == TrackingAuthorization::authorized ? "AD-ID" : "");
  EXPECT_EQ(upload.at("permissions").as_array().size(), 2u);
  perform(BannerAction::close);
  EXPECT_EQ(world.uploads().size(), 1u) << "nothing new, nothing to send";
}

INSTANTIATE_TEST_SUITE_P(
    ComplianceTypes, UnansweredBanner,
    testing::Values(std::tuple{"opt-in", TrackingAuthorization::denied, Strings{"declined", "granted", "declined"}},
                    std::tuple{"opt-in", TrackingAuthorization::authorized, Strings{"declined", "granted", "granted"}},
                    std::tuple{"opt-out", TrackingAuthorization::denied, Strings{"granted", "granted", "declined"}},
                    std::tuple{"notice-only", TrackingAuthorization::notDetermined,
                               Strings{"granted", "granted", "declined"}}));

TEST_F(Banner, DefaultsNeverReplaceADecisionNorAnswerAReconsent) {
  bannerOf(document)["record_consent_upon_app_start"] = true;
  open();
  load();
  perform(BannerAction::reject);
  world.store(key::consentGivenType, std::string(rawValue(GivenType::noAction)));  // as a newer configuration leaves it
  document["purposes"].as_array().push_back(json::object{{"purpose_id", 4}});
  bannerOf(document)["compliance_type"] = "opt-out";
  world.server.serve(document);
  world.advance(2h);
  world.start();
  load();
  world.onMain([&] { model->appeared(); });
  world.settle();
  EXPECT_EQ((Strings{status(1), status(4)}), (Strings{"declined", "granted"}));
  EXPECT_EQ(world.text(key::consentGivenType), "CONSENT_NO_ACTION");
  EXPECT_EQ(world.sdk->isBannerDue(), true);
}

TEST_F(Banner, FailureToRecordIsLogged) {
  open();
  std::filesystem::remove(world.file());
  std::filesystem::remove(world.backup());
  world.restart();
  world.onMain([&] {
    model = ConsentBannerViewModel::make(world.sdk->screens());
    model->recordDefaultExplicitConsents();
  });
  world.settle();
  EXPECT_NE(world.log().find("Something went wrong while recording default constents explicitly."), std::string::npos);
}

TEST_F(Banner, OnlyTheCloseButtonOfThePromptIsRemembered) {
  open();
  const auto shown = [&] { return world.stored().boolean(key::hasShownSettingsPrompt); };
  world.onMain([&] {
    SettingsPromptViewModel prompt(model, VantariKey::cameraUsageDescription);
    EXPECT_FALSE(prompt.content());
    prompt.openSettings();
    prompt.notNow();
  });
  world.settle();
  EXPECT_EQ(presenter->take(), (Strings{"settings", "dismiss", "dismiss"}));
  EXPECT_FALSE(shown());
  world.onMain([&] { SettingsPromptViewModel(model, VantariKey::cameraUsageDescription).close(); });
  world.settle();
  EXPECT_EQ(presenter->take(), Strings{"dismiss"});
  EXPECT_TRUE(shown());
}

}  // namespace
}  // namespace quillon::test
