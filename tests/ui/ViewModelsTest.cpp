// What the banner, the preference centre and the prompt say and offer. What their answers store is in the simulation.
#include <algorithm>
#include <boost/json/parse.hpp>

#include "core/History/NoticeArchive.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Text/Sha256.h"
#include "platform/memory/FixedLocale.h"
#include "tests/support/Contains.h"
#include "tests/ui/OnMainQueue.h"
#include "ui/PreferenceCenter/PreferenceCenterViewModel.h"
#include "ui/SettingsPrompt/SettingsPromptViewModel.h"

namespace quillon::test {
namespace {

namespace json = boost::json;
using namespace std::chrono_literals;

// Purpose 1 can be switched, 2 is essential, 3 follows tracking.
struct ViewModels : OnMainQueue<PreferenceCenterViewModel> {
  ViewModels() {
    for (const std::size_t i : {0, 2}) document["purposes"].as_array()[i].as_object()["disable_opt_out"] = false;
  }

  void open(std::optional<LanguageCode> language = "en") {
    world.server.serve(document);
    auto options = world.options();
    options.languageCode = std::move(language);
    world.startLater(options);
    onMain([this] {
      model = ViewModel::make(ConsentBannerViewModel::make(world.sdk->screens()));
      model->banner()->loadBannerConfig();
      model->banner()->loadCompanyLogo();
      model->banner()->loadSettingsPrompt();
      model->loadPurposes();
      model->loadPermissions();
    });
  }
  void perform(BannerAction action) {
    act([&](ViewModel& shown) { shown.banner()->perform(action); });
  }
  PurposeToggle toggle(std::size_t index) {
    PurposeToggle shown;
    act([&](ViewModel& model) { shown = model.toggle(model.purposes.get().at(index)); });
    return shown;
  }
  void advance(std::chrono::milliseconds time) {
    world.advance(time);
    world.settle();
  }
  // What was shown to the users, as it is kept: texts by their digests.
  SuiteEntries notices() { return *world.platform.store->open(noticeSuiteName, {}).value()->snapshot(); }
  // What the newest decision was an answer to.
  json::object newestNotice() {
    const auto entries = world.sdk->getHistory(100).get().entries;
    const auto isUsers = [](const HistoryEntry& entry) { return entry.decision.cause == DecisionCause::user; };
    const auto name = std::ranges::find_if(entries, isUsers)->decision.notice.value();
    const auto text = std::get<std::string>(notices().at(name));
    EXPECT_EQ(sha256(text), name);
    return json::parse(text).as_object();
  }
};

std::string textOf(const json::object& notice, std::string_view role) {
  for (const auto& text : notice.at("texts").as_array()) {
    if (text.at("role").as_string() == role) return std::string(text.at("text").as_string());
  }
  return "not shown";
}

TEST_F(ViewModels, SayWhatCannotBeLoaded) {
  document.erase("banner_config");
  document["logo_base64"] = "no image";
  document["purposes"].as_array().clear();
  document["permissions"].as_array().clear();
  open();
  act([&](ViewModel& shown) {
    ConsentBannerViewModel& banner = *shown.banner();
    EXPECT_EQ(*banner.bannerConfigResult.get().error(), CustomError{"Failed to Load Banner Configuration"});
    EXPECT_EQ(*banner.settingsPromptResult.get().error(), CustomError{"Failed to Load Setting Prompt"});
    EXPECT_FALSE(banner.companyLogoResult.get().value()->has_value()) << "a logo that cannot be read is no failure";
    EXPECT_EQ(*shown.purposesResult.get().error(), CustomError{"Purposes are not available!"});
    EXPECT_EQ(*shown.permissionsResult.get().error(), CustomError{"Permissions are not available!"});
    banner.recordDefaultExplicitConsents();
  });
  EXPECT_TRUE(contains(world.log(), "Something went wrong while recording default constents explicitly."));
}

TEST_F(ViewModels, SpeakTheDevicesScriptUnlessTheApplicationNamesOne) {
  bannerOf(document)["banner_heading"] = {{"en", "Privacy"}, {"zh", "隐私"}};
  world.amend = [](Platform& platform) {
    platform.locale = std::make_shared<FixedLocale>(std::vector<std::string>{"zh-Hant-TW"});
  };
  for (const auto& [language, reject] : {std::pair(std::optional<LanguageCode>(), "拒絕"), {"zh_Hans", "拒绝"}}) {
    open(language);
    act([&](ViewModel& shown) {
      EXPECT_EQ(shown.banner()->text(BannerAction::reject), reject) << "the configuration names it in no language";
      EXPECT_EQ(shown.banner()->text(shown.banner()->bannerConfig.get()->bannerHeading), "隐私");
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

TEST_F(ViewModels, OpenAndLeaveScreens) {
  bannerOf(document)["privacy_notice_link"] = "https://example.org/privacy";
  document["settings_prompt"] = {{"prompt_heading", {{"de", "Kopf"}}}};
  open();
  using enum BannerAction;
  for (const BannerAction action : {openPrivacyNotice, openDSRPortal, openPreferenceCenter, accept}) perform(action);
  EXPECT_EQ(presenter->take(), (Strings{"link https://example.org/privacy", "link ", "preferences", "dismiss"}));
  using Prompt = SettingsPromptViewModel;
  for (const auto& [tap, shown] : {std::pair(&Prompt::openSettings, Strings{"settings", "dismiss"}),
                                   {&Prompt::notNow, {"dismiss"}},
                                   {&Prompt::close, {"dismiss"}}}) {
    onMain([&] {
      Prompt prompt(model->banner(), VantariKey::cameraUsageDescription);
      EXPECT_EQ(prompt.content()->heading, "Kopf") << "the only language that it has";
      EXPECT_EQ(prompt.content()->settingsButton, "Open Settings") << "a button without words is none";
      (prompt.*tap)();
    });
    EXPECT_EQ(presenter->take(), shown);
    EXPECT_EQ(world.stored().boolean(key::hasShownSettingsPrompt), tap == &Prompt::close);
  }
}

TEST_F(ViewModels, DefaultsFollowTrackingAlsoOfAnEssentialPurposeAndAreSentOnce) {
  document["purposes"].as_array()[2].as_object()["disable_opt_out"] = true;
  world.tracking = TrackingAuthorization::denied;
  open();
  world.sdk->removeConsents();
  world.settle();
  const auto before = world.uploads().size();
  for (int i = 0; i < 2; ++i) perform(BannerAction::close);
  EXPECT_EQ(status(1) + " " + status(2) + " " + status(3), "declined granted declined");
  EXPECT_EQ(world.uploads().size(), before + 1);
}

TEST_F(ViewModels, ABannerThatAppearsRecordsTheDefaultsWhereTheConfigurationSaysSo) {
  for (const bool isSaid : {false, true}) {
    bannerOf(document)["record_consent_upon_app_start"] = isSaid;
    document["version"] = document["version"].as_int64() + 1;
    open();
    world.sdk->removeConsents();
    act([](ViewModel& shown) { shown.banner()->appeared(); });
    EXPECT_EQ(status(1), isSaid ? "declined" : "none");
  }
}

TEST_F(ViewModels, DefaultsDoNotAnswerAReconsent) {
  bannerOf(document)["record_consent_upon_app_start"] = true;
  open();
  perform(BannerAction::reject);
  world.store(key::consentGivenType, std::string(rawValue(GivenType::noAction)));  // as a newer configuration leaves it
  document["purposes"].as_array().push_back(json::object{{"purpose_id", 4}});
  open();
  act([](ViewModel& shown) { shown.banner()->appeared(); });
  EXPECT_EQ(status(4), "declined");
  EXPECT_EQ(world.text(key::consentGivenType), "CONSENT_NO_ACTION");
  EXPECT_TRUE(world.sdk->isBannerDue());
}

TEST_F(ViewModels, SwitchesTellTheirStateAndExplainWhyTheyStay) {
  document["purposes"].as_array().push_back(json::object{{"disable_opt_out", false}});
  open();
  world.sdk->set({.purposeId = 1}, ConsentStatus::withDrawn);
  act([](ViewModel& shown) { shown.loadPurposes(); });
  const PurposeToggle withoutId = toggle(3);
  EXPECT_FALSE(withoutId.isOn || withoutId.isEnabled) << "no decision could be kept";
  EXPECT_EQ(toggle(0), (PurposeToggle{false, true, "Rejected", "Double tap to turn to accepted"}));
  EXPECT_EQ(toggle(1), (PurposeToggle{true, false, "Always Active", ""}));
  EXPECT_EQ(toggle(2), (PurposeToggle{false, false, "Always Active", ""}));
  act([](ViewModel& shown) { shown.tapToggle(1); });
  EXPECT_EQ(toggle(0), (PurposeToggle{true, true, "Accepted", "Double tap to turn to rejected"}));

  Strings announced;
  Observation observation;
  act([&](ViewModel& shown) {
    observation = shown.announcement.observe([&](const std::string& text) { announced.push_back(text); });
    shown.tapToggle(3);
  });
  advance(1499ms);
  EXPECT_TRUE(announced.empty());
  advance(1ms);
  EXPECT_EQ(announced, (Strings{"You can't toggle this Purpose because it\xE2\x80\x99s managed by Apple's App Tracking "
                                "Transparency framework."}));
  EXPECT_FALSE(toggle(2).isOn);
  act([](ViewModel& shown) { shown.setAll(true); });
  advance(3s);
  act([](ViewModel& shown) { shown.setAll(false); });
  advance(3499ms);
  EXPECT_EQ(read(&ViewModel::voiceOverText),
            "All Non-Essential SDK Purposes are not allowed, Essential purposes remain selected.");
  advance(1ms);
  EXPECT_EQ(read(&ViewModel::voiceOverText), "");
  act([](ViewModel& shown) { shown.tapToggle(2); });
  world.onMain([this] { model.reset(); });
  advance(2s);
  EXPECT_EQ(announced.size(), 1u) << "a screen that is gone announces nothing";
}

TEST_F(ViewModels, SaveWhatChangedInOneUpload) {
  open();
  world.tracking = TrackingAuthorization::authorized;  // changes while the screen is open
  act([](ViewModel& shown) {
    shown.tapToggle(1);
    shown.save();
  });
  EXPECT_EQ(presenter->take(), (Strings{"dismiss", "dismiss banner"}));
  const auto uploads = world.uploads();
  ASSERT_EQ(uploads.size(), 1u);
  std::string sent;
  for (const auto& consent : uploads.front().at("purpose_consents").as_array()) {
    sent += std::to_string(consent.at("purpose_id").as_int64()) + consent.at("consent_status").as_string().c_str();
  }
  EXPECT_EQ(sent, "1granted2granted3granted");
  open();
  act([](ViewModel& shown) { shown.save(); });
  EXPECT_EQ(world.uploads().size(), 1u) << "nothing changed";
}

TEST_F(ViewModels, APermissionSaysThatATapOffersThePromptExactlyWhenOneDoes) {
  const struct {
    bool isOn;
    bool bannerAllows;
    bool isListed;
  } cases[] = {{true, true, true}, {false, true, true}, {true, false, true}, {true, true, false}};
  for (const auto& [isOn, bannerAllows, isListed] : cases) {
    document["version"] = document["version"].as_int64() + 1;
    document["is_sp_enabled"] = isOn;
    document["settings_prompt"] = {{"permissions", {{"NSCameraUsageDescription", isListed}}}};
    bannerOf(document)["should_show_settings_prompt"] = bannerAllows;
    open();
    // The application's own offer ends once the prompt was closed; a tap's does not.
    for (const bool wasClosed : {false, true}) {
      world.store(key::hasShownSettingsPrompt, wasClosed);
      onMain([&] { world.sdk->presentSettingPrompt(VantariKey::cameraUsageDescription); });
      EXPECT_EQ(!presenter->take().empty(), isOn && bannerAllows && isListed && !wasClosed);
    }
    bool isOffered = false;
    act([&](ViewModel& shown) {
      isOffered = shown.offersSettings(shown.permissions.get().at(0));
      shown.tapPermission(VantariKey::cameraUsageDescription);
    });
    EXPECT_EQ(isOffered, isOn && bannerAllows && isListed);
    EXPECT_EQ(presenter->take(), isOffered ? Strings{"prompt NSCameraUsageDescription"} : Strings());
  }
}

TEST_F(ViewModels, KeepWhatTheyShowedInTheUsersLanguageUntilTheConsentsGo) {
  bannerOf(document)["banner_heading"] = {{"en", "Your choice"}, {"de", "Ihre Wahl"}};
  document["purposes"].at(0).as_object()["purpose_name"] = {{"en", "Measuring"}, {"de", "Messen"}};
  open("de");
  perform(BannerAction::reject);
  const json::object banner = newestNotice();
  EXPECT_EQ(banner.at("screen"), "banner");
  EXPECT_EQ(banner.at("language"), "de");
  EXPECT_EQ(banner.at("configuration_version"), 5);
  EXPECT_EQ(textOf(banner, "banner_heading"), "Ihre Wahl");
  EXPECT_EQ(textOf(banner, "reject"), "Ablehnen");
  EXPECT_EQ(banner.at("purposes").at(0).at("name"), "Messen");
  act([](ViewModel& shown) {
    shown.tapToggle(1);
    shown.save();
  });
  EXPECT_EQ(newestNotice().at("screen"), "preference_center");
  EXPECT_EQ(textOf(newestNotice(), "save_changes"), "Änderungen speichern");
  EXPECT_EQ(textOf(newestNotice(), "sdk_tab_heading"), "Zwecke") << "a label of ours where none is configured";
  const auto kept = notices();
  open("de");
  EXPECT_EQ(notices(), kept) << "once";
  world.sdk->removeConsents();
  EXPECT_TRUE(notices().empty());
}

TEST_F(ViewModels, KeepOneMebibyteOfNoticesAndTheOldestGo) {
  world.start();
  const auto keep = [this](char letter, std::size_t size = 300'000) {
    return world.sdk->screens()->keepNotice(std::string(size, letter));
  };
  Strings digests;
  for (const char letter : std::string("abcdea")) digests.push_back(keep(letter));
  EXPECT_EQ(digests.back(), digests.front()) << "shown again, and kept again";
  keep('z', 2'000'000);  // too long to be kept at all
  const auto texts = notices();
  for (std::size_t i = 0; i < 5; ++i) {
    const auto size = std::get<std::string>(texts.at(digests[i])).size();
    EXPECT_EQ(size, i == 1 || i == 2 ? 0u : 300'000u) << "gone, and known to be";
  }
  EXPECT_EQ(texts.size(), 5u + 1) << "and their order";
}

}  // namespace
}  // namespace quillon::test
