#include "ui/PreferenceCenter/PreferenceCenterViewModel.h"

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "tests/ui/OnMainQueue.h"

namespace quillon::test {
namespace {

namespace json = boost::json;
using namespace std::chrono_literals;
using Selection = std::map<std::int64_t, bool>;
using Model = PreferenceCenterViewModel;

// Purposes 1 and 5 can be switched, 2 is essential, 3 follows tracking, 4 does not say whether it is essential.
struct PreferenceCenter : OnMainQueue<Model> {
  PreferenceCenter() {
    auto& purposes = document["purposes"].as_array();
    for (const std::size_t i : {0, 2}) purposes[i].as_object()["disable_opt_out"] = false;
    purposes.push_back(json::object{{"purpose_id", 4}});
    purposes.push_back(json::object{{"purpose_id", 5}, {"disable_opt_out", false}});
  }

  void start() {
    world.server.serve(document);
    world.startLater();
  }
  void open() {
    if (!world.sdk) start();
    onMain([this] {
      model = Model::make(ConsentBannerViewModel::make(world.sdk->screens()));
      model->banner()->loadBannerConfig();
      model->loadPurposes();
      model->loadPermissions();
    });
  }
  PurposeToggle toggle(std::size_t index) {
    PurposeToggle shown;
    act([&](Model& model) { shown = model.toggle(model.purposes.get().at(index)); });
    return shown;
  }
  void advance(std::chrono::milliseconds time) {
    world.advance(time);
    world.settle();
  }
};

TEST_F(PreferenceCenter, SelectsWhatIsGrantedAndSwitchesAllThatTheUserMayDecideAbout) {
  start();
  world.sdk->set({.purposeId = 1}, ConsentStatus::withDrawn);
  world.sdk->set({.purposeId = 4}, ConsentStatus::granted);
  open();
  EXPECT_EQ(read(&Model::selectedPurposes), (Selection{{1, false}, {2, false}, {3, false}, {4, true}, {5, false}}));
  act([](Model& shown) { shown.setAll(true); });
  EXPECT_EQ(read(&Model::selectedPurposes), (Selection{{1, true}, {2, false}, {3, false}, {4, true}, {5, true}}));
  EXPECT_EQ(read(&Model::voiceOverText), "All applicable SDK Purposes are allowed.");
  advance(3s);
  act([](Model& shown) { shown.setAll(false); });
  advance(3499ms);
  EXPECT_EQ(read(&Model::voiceOverText),
            "All Non-Essential SDK Purposes are not allowed, Essential purposes remain selected.");
  advance(1ms);
  EXPECT_EQ(read(&Model::voiceOverText), "");
}

TEST_F(PreferenceCenter, SaysWhatThereIsNot) {
  document["purposes"].as_array().clear();
  document["permissions"].as_array().clear();
  open();
  act([&](Model& shown) {
    EXPECT_EQ(*shown.purposesResult.get().error(), CustomError{"Purposes are not available!"});
    EXPECT_EQ(*shown.permissionsResult.get().error(), CustomError{"Permissions are not available!"});
  });
}

TEST_F(PreferenceCenter, TogglesTellTheirStateAndExplainWhyTheyStay) {
  document["purposes"].as_array()[2].as_object()["disable_opt_out"] = true;
  const auto nameless = document["purposes"].as_array().size();
  document["purposes"].as_array().push_back(json::object{{"disable_opt_out", false}});
  open();
  const PurposeToggle withoutId = toggle(nameless);
  EXPECT_FALSE(withoutId.isOn || withoutId.isEnabled) << "no decision could be kept";
  EXPECT_EQ(toggle(0), (PurposeToggle{false, true, "Rejected", "Double tap to turn to accepted"}));
  EXPECT_EQ(toggle(1), (PurposeToggle{true, false, "Always Active", ""}));
  EXPECT_EQ(toggle(2), (PurposeToggle{false, false, "Always Active", ""}));
  act([](Model& shown) { shown.tapToggle(1); });
  EXPECT_EQ(toggle(0), (PurposeToggle{true, true, "Accepted", "Double tap to turn to rejected"}));

  const auto selection = read(&Model::selectedPurposes);
  Strings announced;
  std::optional<Observation> observation;
  act([&](Model& shown) {
    observation = shown.announcement.observe([&](const std::string& text) { announced.push_back(text); });
    shown.tapToggle(2);
  });
  advance(1499ms);
  EXPECT_TRUE(announced.empty());
  advance(1ms);
  act([](Model& shown) { shown.tapToggle(3); });
  advance(1500ms);
  EXPECT_EQ(announced, (Strings{"You cannot opt out from this Purpose.",
                                "You can't toggle this Purpose because it\xE2\x80\x99s managed by Apple's App Tracking "
                                "Transparency framework."}));
  EXPECT_EQ(read(&Model::selectedPurposes), selection);
  act([](Model& shown) { shown.tapToggle(2); });
  world.onMain([this] { model.reset(); });
  advance(2s);
  EXPECT_EQ(announced.size(), 2u) << "a screen that is gone announces nothing";
}

TEST_F(PreferenceCenter, SavesTheChoicesAsOneDecisionUnlessItIsClosed) {
  start();
  world.sdk->set({.purposeId = 4}, ConsentStatus::granted);
  world.sdk->set({.purposeId = 5}, ConsentStatus::declined);
  world.advance(2s);
  const auto before = world.uploads().size();
  open();
  act([](Model& shown) {
    shown.setAll(true);
    shown.close();
  });
  EXPECT_EQ(presenter->take(), Strings{"dismiss"});
  EXPECT_EQ(status(1), "none") << "nothing is stored before it is saved";
  open();
  act([](Model& shown) { shown.tapToggle(1); });
  world.tracking = TrackingAuthorization::authorized;  // changes while the screen is open
  act([](Model& shown) { shown.save(); });
  EXPECT_EQ(presenter->take(), (Strings{"dismiss", "dismiss banner"}));
  EXPECT_EQ(world.text(key::consentGivenType), "CONSENT_EXPLICIT");
  ASSERT_EQ(world.uploads().size(), before + 1) << "all that changed goes in one upload";
  const auto upload = world.uploads().back();
  std::string sent;
  for (const auto& consent : upload.at("purpose_consents").as_array()) {
    sent += std::to_string(consent.at("purpose_id").as_int64()) + consent.at("consent_status").as_string().c_str();
  }
  EXPECT_EQ(sent, "1granted2granted3granted");
  EXPECT_EQ(status(5), "declined");
  open();
  act([](Model& shown) { shown.save(); });
  EXPECT_EQ(world.uploads().size(), before + 1) << "nothing changed";
}

TEST_F(PreferenceCenter, PermissionSaysThatATapOffersThePromptExactlyWhenOneDoes) {
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
    start();
    open();
    // The application's own offer ends once the prompt was closed; a tap's does not.
    for (const bool wasClosed : {false, true}) {
      world.store(key::hasShownSettingsPrompt, wasClosed);
      onMain([&] { world.sdk->presentSettingPrompt(VantariKey::cameraUsageDescription); });
      EXPECT_EQ(!presenter->take().empty(), isOn && bannerAllows && isListed && !wasClosed);
    }
    bool isOffered = false;
    act([&](Model& shown) {
      isOffered = shown.offersSettings(shown.permissions.get().at(0));
      shown.tapPermission(VantariKey::cameraUsageDescription);
    });
    EXPECT_EQ(isOffered, isOn && bannerAllows && isListed);
    EXPECT_EQ(presenter->take(), isOffered ? Strings{"prompt NSCameraUsageDescription"} : Strings());
  }
}

}  // namespace
}  // namespace quillon::test
