#include "ui/PreferenceCenter/PreferenceCenterViewModel.h"

#include <gtest/gtest.h>

#include <boost/json/serialize.hpp>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "platform/memory/RecordingPresenter.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

namespace json = boost::json;
using namespace std::chrono_literals;
using Selection = std::map<std::int64_t, bool>;
using Model = PreferenceCenterViewModel;

// Purposes 1 and 5 can be switched, 2 is essential, 3 follows tracking, 4 does not say whether it is essential.
struct PreferenceCenter : testing::Test {
  PreferenceCenter() {
    auto& purposes = document["purposes"].as_array();
    purposes[0].as_object()["disable_opt_out"] = false;
    purposes.push_back(json::object{{"purpose_id", 4}});
    purposes.push_back(json::object{{"purpose_id", 5}, {"disable_opt_out", false}});
    world.amend = [this](Platform& platform) { platform.screens = presenter; };
  }
  ~PreferenceCenter() override {
    world.onMain([this] { model.reset(); });
  }

  void open() {
    world.server.serve(document);
    if (!world.sdk) world.start();
    world.onMain([this] {
      model = PreferenceCenterViewModel::make(ConsentBannerViewModel::make(world.sdk->screens()));
      model->loadPurposes();
      model->loadPermissions();
    });
    world.settle();
  }
  void decide(std::int64_t id, ConsentStatus status) {
    Purpose purpose;
    purpose.purposeId = id;
    world.sdk->set(purpose, status);
  }
  // What the model says, read on its queue.
  template <class Value>
  Value read(const Published<Value> PreferenceCenterViewModel::* property) {
    std::optional<Value> value;
    world.onMain([&] { value = ((*model).*property).get(); });
    return *value;
  }
  PurposeToggle toggle(std::size_t index) {
    PurposeToggle shown;
    world.onMain([&] { shown = model->toggle(model->purposes.get().at(index)); });
    return shown;
  }
  void act(const std::function<void(PreferenceCenterViewModel&)>& action) {
    world.onMain([&] { action(*model); });
    world.settle();
  }
  void advance(std::chrono::milliseconds time) {
    world.advance(time);
    world.settle();
  }

  json::object document = validConfiguration();
  World world;
  std::shared_ptr<RecordingPresenter> presenter = std::make_shared<RecordingPresenter>();
  std::shared_ptr<PreferenceCenterViewModel> model;
};

TEST_F(PreferenceCenter, SelectsWhatIsGranted) {
  world.server.serve(document);
  world.start();
  decide(1, ConsentStatus::withDrawn);
  decide(2, ConsentStatus::granted);
  decide(4, ConsentStatus::granted);
  open();
  EXPECT_EQ(read(&Model::selectedPurposes), (Selection{{1, false}, {2, true}, {3, false}, {4, true}, {5, false}}));
  EXPECT_EQ(read(&Model::permissions).size(), 2u);
}

TEST_F(PreferenceCenter, SaysWhatThereIsNot) {
  document["purposes"].as_array().clear();
  document["permissions"].as_array().clear();
  open();
  world.onMain([&] {
    EXPECT_EQ(*model->purposesResult.get().error(), CustomError{"Purposes are not available!"});
    EXPECT_EQ(*model->permissionsResult.get().error(), CustomError{"Permissions are not available!"});
  });
}

TEST_F(PreferenceCenter, SwitchesAllThatTheUserMayDecideAbout) {
  open();
  act([](Model& shown) {
    EXPECT_TRUE(shown.hasSwitchablePurposes());
    shown.setAll(true);
  });
  EXPECT_EQ(read(&Model::selectedPurposes), (Selection{{1, true}, {2, false}, {3, false}, {4, false}, {5, true}}));
  EXPECT_EQ(read(&Model::voiceOverText), "All applicable SDK Purposes are allowed.");
  advance(3s);
  act([](Model& shown) { shown.setAll(false); });
  advance(3499ms);
  EXPECT_EQ(read(&Model::voiceOverText),
            "All Non-Essential SDK Purposes are not allowed, Essential purposes remain selected.");
  advance(1ms);
  EXPECT_EQ(read(&Model::voiceOverText), "");
}

TEST_F(PreferenceCenter, TogglesTellTheirStateAndExplainWhyTheyStay) {
  document["purposes"].as_array()[2].as_object()["disable_opt_out"] = true;
  open();
  EXPECT_EQ(toggle(0), (PurposeToggle{false, true, "Rejected", "Double tap to turn to accepted"}));
  EXPECT_EQ(toggle(1), (PurposeToggle{true, false, "Always Active", ""}));
  EXPECT_EQ(toggle(2), (PurposeToggle{false, false, "Always Active", ""}));
  act([](Model& shown) { shown.tapToggle(1); });
  EXPECT_EQ(toggle(0), (PurposeToggle{true, true, "Accepted", "Double tap to turn to rejected"}));

  const auto selection = read(&Model::selectedPurposes);
  std::vector<std::string> announced;
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
  EXPECT_EQ(announced, (std::vector<std::string>{"You cannot opt out from this Purpose.",
                                                 "You can't toggle this Purpose because it\xE2\x80\x99s managed by "
                                                 "Apple's App Tracking Transparency framework."}));
  EXPECT_EQ(read(&Model::selectedPurposes), selection);
  act([](Model& shown) { shown.tapToggle(2); });
  world.onMain([this] { model.reset(); });
  advance(2s);
  EXPECT_EQ(announced.size(), 2u) << "a screen that is gone announces nothing";
}

TEST_F(PreferenceCenter, SavesTheChoicesAsOneDecision) {
  world.server.serve(document);
  world.start();
  decide(4, ConsentStatus::granted);
  decide(5, ConsentStatus::declined);
  world.advance(2s);
  const auto before = world.uploads().size();
  open();
  act([](Model& shown) { shown.tapToggle(1); });
  EXPECT_EQ(world.text("1"), std::nullopt) << "nothing is stored before it is saved";
  world.tracking = TrackingAuthorization::authorized;  // changes while the screen is open
  act([](Model& shown) { shown.save(); });

  EXPECT_EQ(presenter->take(), (std::vector<std::string>{"dismiss", "dismiss banner"}));
  EXPECT_EQ(world.text(key::consentGivenType), "CONSENT_EXPLICIT");
  ASSERT_EQ(world.uploads().size(), before + 1) << "all that changed goes in one upload";
  const json::object upload = world.uploads().back();
  json::object sent;
  for (const auto& consent : upload.at("purpose_consents").as_array()) {
    sent[std::to_string(consent.at("purpose_id").as_int64())] = consent.at("consent_status");
  }
  EXPECT_EQ(json::serialize(sent), R"({"1":"granted","2":"granted","3":"granted"})");
  EXPECT_EQ(world.text("5"), "declined");

  open();
  act([](Model& shown) { shown.save(); });
  EXPECT_EQ(world.uploads().size(), before + 1) << "nothing changed";
}

TEST_F(PreferenceCenter, ClosedWithoutSavingDiscardsTheChoices) {
  open();
  act([](Model& shown) {
    shown.setAll(true);
    shown.close();
  });
  EXPECT_EQ(presenter->take(), std::vector<std::string>{"dismiss"});
  EXPECT_EQ(world.text("1"), std::nullopt);
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
    world.server.serve(document);
    if (world.sdk) {
      world.startLater();
    } else {
      world.start();
    }
    open();
    bool isOffered = false;
    act([&](Model& shown) { shown.banner()->loadBannerConfig(); });
    world.settle();
    act([&](Model& shown) {
      isOffered = shown.offersSettings(shown.permissions.get().at(0));
      shown.tapPermission(VantariKey::cameraUsageDescription);
    });
    world.settle();
    EXPECT_EQ(isOffered, isOn && bannerAllows && isListed);
    EXPECT_EQ(!presenter->take().empty(), isOffered);
  }
}

TEST_F(PreferenceCenter, PermissionOffersThePromptAlsoWhenItWasClosedBefore) {
  document["is_sp_enabled"] = true;
  document["settings_prompt"] = {{"permissions", {{"NSCameraUsageDescription", true}}}};
  bannerOf(document)["should_show_settings_prompt"] = true;
  open();
  world.store(key::hasShownSettingsPrompt, true);
  act([](Model& shown) {
    shown.tapPermission(VantariKey::contactsUsageDescription);
    shown.tapPermission(VantariKey::cameraUsageDescription);
  });
  EXPECT_EQ(presenter->take(), std::vector<std::string>{"prompt NSCameraUsageDescription"});
}

}  // namespace
}  // namespace quillon::test
