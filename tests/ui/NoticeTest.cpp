// What the history keeps of a screen that was answered.
#include <gtest/gtest.h>

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>

#include "core/ConsentSDK/StoredLogContext.h"
#include "core/History/NoticeArchive.h"
#include "core/Text/Sha256.h"
#include "platform/memory/RecordingPresenter.h"
#include "tests/support/World.h"
#include "ui/PreferenceCenter/PreferenceCenterViewModel.h"

namespace quillon::test {
namespace {

namespace json = boost::json;

struct Notices : ::testing::Test {
  Notices() {
    world.amend = [](Platform& platform) { platform.screens = std::make_shared<RecordingPresenter>(); };
    auto& eu = bannerOf(document);
    eu["banner_heading"] = {{"en", "Your choice"}, {"de", "Ihre Wahl"}};
    eu["privacy_notice_link"] = "https://example.com/privacy";
    auto& purpose = document["purposes"].at(0).as_object();
    purpose["purpose_name"] = {{"en", "Measuring"}, {"de", "Messen"}};
    purpose["disable_opt_out"] = false;
  }
  ~Notices() override {
    world.onMain([this] {
      preferences.reset();
      banner.reset();
    });
  }

  void open() {
    world.server.serve(document);
    if (!world.sdk) world.start();
    world.onMain([this] {
      banner = ConsentBannerViewModel::make(world.sdk->screens());
      banner->loadBannerConfig();
      preferences = PreferenceCenterViewModel::make(banner);
      preferences->loadPurposes();
    });
    world.settle();
  }
  // What the newest decision of the user was an answer to, as it is kept.
  json::object newestNotice() {
    for (const HistoryEntry& entry : world.sdk->getHistory(100).get().entries) {
      if (entry.decision.cause != DecisionCause::user) continue;
      const std::string name = entry.decision.notice.value_or("none");
      const auto texts = kept();
      const auto found = texts.find(name);
      if (found == texts.end()) return {{"screen", name}};
      EXPECT_EQ(sha256(found->second), name);
      return json::parse(found->second).as_object();
    }
    return {};
  }
  std::map<std::string, std::string> kept() { return archive.texts(); }

  json::object document = validConfiguration();
  World world;
  UserDefaultManager defaults{world.platform, logger};
  StoredLogContext context{world.platform, defaults};
  SDKLogger logger{context};
  NoticeArchive archive{world.platform, logger};
  std::shared_ptr<ConsentBannerViewModel> banner;
  std::shared_ptr<PreferenceCenterViewModel> preferences;
};

std::string textOf(const json::object& notice, std::string_view role) {
  for (const auto& text : notice.at("texts").as_array()) {
    if (text.at("role").as_string() == role) return std::string(text.at("text").as_string());
  }
  return "not shown";
}

TEST_F(Notices, AreWhatTheScreenShowedInTheUsersLanguage) {
  open();
  world.onMain([this] { banner->perform(BannerAction::reject); });
  world.settle();
  const json::object shown = newestNotice();
  EXPECT_EQ(shown.at("screen"), "banner");
  EXPECT_EQ(shown.at("language"), "en");
  EXPECT_EQ(shown.at("configuration_version"), 5);
  EXPECT_EQ(textOf(shown, "banner_heading"), "Your choice");
  EXPECT_EQ(textOf(shown, "reject"), "Reject");
  EXPECT_EQ(shown.at("purposes").at(0).at("name"), "Measuring");

  world.onMain([this] {
    preferences->tapToggle(1);
    preferences->save();
  });
  world.settle();
  const json::object chosen = newestNotice();
  EXPECT_EQ(chosen.at("screen"), "preference_center");
  EXPECT_EQ(textOf(chosen, "save_changes"), "Save Changes");
}

TEST_F(Notices, AreKeptOnceAndGoWithTheConsents) {
  open();
  const auto first = kept();
  EXPECT_EQ(first.size(), 2u) << "of the banner and of the preference centre";
  open();
  EXPECT_EQ(kept(), first);
  world.sdk->removeConsents();
  EXPECT_TRUE(kept().empty());
}

TEST_F(Notices, OfTheApplicationSaySo) {
  open();
  ASSERT_TRUE(world.sdk->set({.purposeId = 1}, ConsentStatus::granted));
  EXPECT_EQ(newestNotice().at("screen"), "application");
  ASSERT_TRUE(world.sdk->acceptOrReject(true).get());
  EXPECT_EQ(newestNotice().at("screen"), "application");
}

TEST_F(Notices, TakeOneMebibyteTogetherAndTheOldestGo) {
  world.start();
  std::vector<std::string> digests;
  for (char letter = 'a'; letter <= 'e'; ++letter) digests.push_back(archive.keep(std::string(300'000, letter)));
  auto texts = archive.texts();
  ASSERT_EQ(texts.size(), 5u);
  EXPECT_EQ(texts[digests[0]], "") << "gone, and known to be";
  EXPECT_EQ(texts[digests[1]], "");
  EXPECT_EQ(texts[digests[2]].size(), 300'000u);
  EXPECT_EQ(archive.keep(std::string(300'000, 'a')), digests[0]);
  texts = archive.texts();
  EXPECT_EQ(texts[digests[0]].size(), 300'000u) << "shown again, and kept again";
  EXPECT_EQ(texts[digests[2]], "");
  archive.keep(std::string(2'000'000, 'z'));
  EXPECT_EQ(archive.texts().size(), 5u) << "too long to be kept at all";
}

}  // namespace
}  // namespace quillon::test
