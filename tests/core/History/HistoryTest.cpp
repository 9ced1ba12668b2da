// The history of decisions.
#include <gtest/gtest.h>

#include <boost/json/serialize.hpp>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

using namespace std::chrono_literals;
using enum ConsentStatus;

struct History : ::testing::Test {
  // "number subject from>to cause upload", oldest first.
  std::vector<std::string> listed() {
    std::vector<std::string> lines;
    for (const auto& [number, decision, upload, link, hash] : world.sdk->getHistory(1000).get().entries) {
      EXPECT_EQ(link, HistoryLink::intact);
      const std::string subject = decision.purposeId ? std::to_string(*decision.purposeId)
                                                     : decision.permission.value().rawValue().substr(2, 6);
      const std::string from(decision.from ? rawValue(*decision.from) : "");
      std::string line = std::to_string(number) + " " + subject + " " + from + ">" + std::string(rawValue(decision.to));
      line.append(" ").append(rawValue(decision.cause)).append(" ").append(rawValue(upload));
      lines.insert(lines.begin(), line);
    }
    return lines;
  }

  World world;
};

using Lines = std::vector<std::string>;

TEST_F(History, TellsEveryKindOfDecisionWithItsCircumstances) {
  world.tracking = TrackingAuthorization::denied;
  world.start();
  EXPECT_EQ(listed(), (Lines{"1 Camera >granted device pending", "2 Contac >declined device pending"}));
  world.sdk->checkConsents().wait();
  ASSERT_TRUE(world.sdk->set({.purposeId = 1}, granted));
  world.tracking = TrackingAuthorization::authorized;
  for (int check = 0; check < 2; ++check) world.sdk->checkConsents().wait();
  EXPECT_EQ(world.uploads().size(), 2u) << "nothing changed, nothing is sent";
  world.advance(1s);
  ASSERT_TRUE(world.sdk->acceptOrReject(false).get());
  EXPECT_EQ(listed(),
            (Lines{"1 Camera >granted device uploaded", "2 Contac >declined device uploaded",
                   "3 1 >declined default uploaded", "4 2 >granted essential uploaded",
                   "5 3 >declined tracking_status uploaded", "6 1 declined>granted user uploaded",
                   "7 3 declined>granted tracking_status uploaded", "8 1 granted>declined user uploaded",
                   "9 2 granted>granted essential uploaded", "10 3 granted>granted tracking_status uploaded"}));
  auto last = world.sdk->getHistory(3).get();
  EXPECT_EQ(last.entries.front().decision.previous, last.entries.at(1).hash);
  last.entries.front().decision.previous = std::nullopt;
  EXPECT_EQ(last.entries.front().decision, (Decision{.time = startSeconds + 1,
                                                     .purposeId = 3,
                                                     .from = granted,
                                                     .to = granted,
                                                     .cause = DecisionCause::trackingStatus,
                                                     .givenType = GivenType::explicitly,
                                                     .configurationVersion = 5,
                                                     .complianceType = ComplianceType::optIn,
                                                     .language = "en"}));
  EXPECT_EQ(last.before, 8);
  const auto earlier = world.sdk->getHistory(100, last.before).get();
  EXPECT_EQ(earlier.entries.size(), 7u);
  EXPECT_EQ(earlier.entries.front().decision.givenType, GivenType::noAction) << "the device decided, not the user";
  EXPECT_EQ(earlier.entries.at(3).decision.givenType, GivenType::implicitly);
  EXPECT_FALSE(earlier.before);

  world.restart();
  EXPECT_EQ(listed().size(), 10u) << "it outlives the process";
}

TEST_F(History, ExplainsWhyAConsentIsWhatItIs) {
  world.tracking = TrackingAuthorization::denied;
  world.start();
  const auto why = [&](std::int64_t id) {
    const auto explanation = world.sdk->explain(id).get();
    EXPECT_EQ(explanation.status, world.sdk->get(id));
    return explanation;
  };
  EXPECT_EQ(why(1),
            (ConsentExplanation{declined, DecisionCause::byDefault, std::nullopt,
                                "Nothing was decided: declined is the default of the compliance type opt-in."}));
  world.sdk->checkConsents().wait();
  ASSERT_TRUE(world.sdk->set({.purposeId = 1}, granted));
  world.sdk->checkConsents().wait();
  EXPECT_EQ(why(1), (ConsentExplanation{granted, DecisionCause::user, startSeconds,
                                        "The user decided it: granted on 2023-11-14."}));
  EXPECT_EQ(why(2).text, "The purpose is essential: granted on 2023-11-14.");
  EXPECT_EQ(why(3).text, "It follows the tracking status of the device: declined on 2023-11-14.");
  world.store("4", std::string("withdrawn"));
  world.store("1", std::string("declined"));
  for (const std::int64_t id : {1, 4}) {
    EXPECT_EQ(why(id).cause, std::nullopt) << "the history tells of no such decision";
    EXPECT_EQ(why(id).time, std::nullopt);
  }

  EXPECT_EQ(world.sdk->explainBanner().text, "The banner is not due: it is answered until 2024-11-14.");
  world.store(key::consentGivenType, std::string("CONSENT_NO_ACTION"));
  world.store(key::bannerShownDate, startSeconds);
  EXPECT_EQ(world.sdk->explainBanner(),
            (BannerExplanation{true, BannerReason::reconsent, std::nullopt, 5,
                               "The banner is due: version 5 of the configuration asks for the consents again."}));
}

TEST_F(History, FollowsTheUploads) {
  world.start();
  ASSERT_TRUE(world.sdk->set({.purposeId = 1}, granted));
  ASSERT_TRUE(world.sdk->set({.purposeId = 1}, declined));
  ASSERT_TRUE(world.sdk->set({.purposeId = 77}, granted));
  const HeldAnswers held;
  world.server.onUpload(held.before(json(saved)));
  auto upload = world.sdk->uploadPendingConsents();
  held.waitForOne();
  ASSERT_TRUE(world.sdk->set({.purposeId = 1}, granted));
  held.release();
  upload.wait();
  EXPECT_EQ(listed(), (Lines{"1 Camera >granted device uploaded", "2 Contac >declined device uploaded",
                             "3 1 >granted user superseded", "4 1 granted>declined user uploaded",
                             "5 77 >granted user pending", "6 1 declined>granted user pending"}));
  EXPECT_EQ(world.stored().pendingPurposes(), (std::vector<std::int64_t>{1, 77})) << "what was decided meanwhile, too";
}

TEST_F(History, HoldsNoDecisionThatWasNotStoredAndNoTextOfAnyLength) {
  const std::string endless(10'000, 'p');
  world.server.serve(configurationWith(
      {{"permissions", {{{"permission_id", endless}}, {{"permission_id", "NSCameraUsageDescription"}}}}}));
  world.start();
  EXPECT_FALSE(world.sdk->set({.permissionId = VantariKey(endless)}, granted));
  EXPECT_EQ(listed(), Lines{"1 Camera >granted device pending"});
}

}  // namespace
}  // namespace quillon::test
