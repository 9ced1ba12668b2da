// What the history keeps of a screen that was answered.
#include <boost/json/parse.hpp>

#include "core/ConsentSDK/StoredLogContext.h"
#include "core/History/NoticeArchive.h"
#include "core/Text/Sha256.h"
#include "tests/ui/OnMainQueue.h"
#include "ui/PreferenceCenter/PreferenceCenterViewModel.h"

namespace quillon::test {
namespace {

namespace json = boost::json;

struct Notices : OnMainQueue<PreferenceCenterViewModel> {
  void open() {
    bannerOf(document)["banner_heading"] = {{"en", "Your choice"}, {"de", "Ihre Wahl"}};
    auto& purpose = document["purposes"].at(0).as_object();
    purpose["purpose_name"] = {{"en", "Measuring"}, {"de", "Messen"}};
    purpose["disable_opt_out"] = false;
    world.server.serve(document);
    world.start();
    onMain([this] {
      model = PreferenceCenterViewModel::make(ConsentBannerViewModel::make(world.sdk->screens()));
      model->banner()->loadBannerConfig();
      model->loadPurposes();
    });
  }
  // What the newest decision of the user was an answer to, as it is kept.
  json::object newestNotice() {
    for (const HistoryEntry& entry : world.sdk->getHistory(100).get().entries) {
      if (entry.decision.cause != DecisionCause::user) continue;
      const std::string name = entry.decision.notice.value_or("none");
      const auto text = archive.texts()[name];
      if (text.empty()) return {{"screen", name}};
      EXPECT_EQ(sha256(text), name);
      return json::parse(text).as_object();
    }
    return {};
  }

  UserDefaultManager defaults{world.platform, logger};
  StoredLogContext context{world.platform, defaults};
  SDKLogger logger{context};
  NoticeArchive archive{world.platform, logger};
};

std::string textOf(const json::object& notice, std::string_view role) {
  for (const auto& text : notice.at("texts").as_array()) {
    if (text.at("role").as_string() == role) return std::string(text.at("text").as_string());
  }
  return "not shown";
}

TEST_F(Notices, AreWhatTheScreenShowedInTheUsersLanguage) {
  open();
  act([](ViewModel& shown) { shown.banner()->perform(BannerAction::reject); });
  const json::object banner = newestNotice();
  EXPECT_EQ(banner.at("screen"), "banner");
  EXPECT_EQ(banner.at("language"), "en");
  EXPECT_EQ(banner.at("configuration_version"), 5);
  EXPECT_EQ(textOf(banner, "banner_heading"), "Your choice");
  EXPECT_EQ(textOf(banner, "reject"), "Reject");
  EXPECT_EQ(banner.at("purposes").at(0).at("name"), "Measuring");
  act([](ViewModel& shown) {
    shown.tapToggle(1);
    shown.save();
  });
  const json::object preferences = newestNotice();
  EXPECT_EQ(preferences.at("screen"), "preference_center");
  EXPECT_EQ(textOf(preferences, "save_changes"), "Save Changes");
  ASSERT_TRUE(world.sdk->set({.purposeId = 1}, ConsentStatus::granted));
  EXPECT_EQ(newestNotice().at("screen"), "application");
}

TEST_F(Notices, AreKeptOnceAndGoWithTheConsents) {
  open();
  const auto first = archive.texts();
  EXPECT_EQ(first.size(), 2u) << "of the banner and of the preference centre";
  open();
  EXPECT_EQ(archive.texts(), first);
  world.sdk->removeConsents();
  EXPECT_TRUE(archive.texts().empty());
}

TEST_F(Notices, TakeOneMebibyteTogetherAndTheOldestGo) {
  world.start();
  Strings digests;
  for (const char letter : std::string("abcdea")) digests.push_back(archive.keep(std::string(300'000, letter)));
  EXPECT_EQ(digests.back(), digests.front()) << "shown again, and kept again";
  archive.keep(std::string(2'000'000, 'z'));
  const auto texts = archive.texts();
  EXPECT_EQ(texts.size(), 5u) << "one is too long to be kept at all";
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(texts.at(digests[i]).size(), i == 1 || i == 2 ? 0u : 300'000u) << "gone, and known to be";
  }
}

}  // namespace
}  // namespace quillon::test
