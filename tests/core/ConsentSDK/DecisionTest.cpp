#include <gtest/gtest.h>

#include <algorithm>
#include <boost/json/serialize.hpp>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "tests/support/Contains.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

using namespace std::chrono_literals;
using enum ConsentStatus;

// An upload's status for a purpose, "" when it is not listed.
std::string uploaded(const boost::json::object& upload, std::int64_t id) {
  for (const auto& consent : upload.at("purpose_consents").as_array()) {
    if (consent.at("purpose_id") == id) return consent.at("consent_status").as_string().c_str();
  }
  return {};
}

TEST(Defaults, FollowTheComplianceType) {
  for (const auto& [type, expected] : std::vector<std::pair<std::string, ConsentStatus>>{
           {"opt-in", declined}, {"opt-out", granted}, {"notice-only", granted}, {"Opt-In", granted}, {"", granted}}) {
    World world;
    world.store(key::currentComplianceType, type);
    EXPECT_EQ(world.sdk->get(1), expected) << type;
    world.store("1", std::string("granted "));
    EXPECT_EQ(world.sdk->get(1), expected) << "a text that is no status counts as none";
    world.store("1", std::int64_t{0});
    EXPECT_EQ(world.sdk->get(1), expected);
    world.store("1", std::string("withdrawn"));
    EXPECT_EQ(world.sdk->get(1), withDrawn);
  }
}

TEST(Answer, IsStoredAsOneAndUploaded) {
  using enum TrackingAuthorization;
  struct Case {
    bool accept;
    TrackingAuthorization tracking;
    ConsentStatus statistics, essential, tracked;
  };
  for (const Case& example :
       {Case{true, authorized, granted, granted, granted}, Case{true, denied, granted, granted, declined},
        Case{false, notDetermined, declined, granted, declined}, Case{false, authorized, declined, granted, granted}}) {
    World world;
    world.tracking = example.tracking;
    world.start();
    ASSERT_TRUE(world.sdk->acceptOrReject(example.accept).get());
    EXPECT_EQ(world.text(key::consentGivenType), "CONSENT_EXPLICIT");
    EXPECT_TRUE(world.stored().pendingPurposes().empty());
    EXPECT_TRUE(world.stored().pendingPermissions().empty());
    ASSERT_EQ(world.uploads().size(), 1u);
    auto upload = world.uploads().front();
    std::int64_t id = 0;
    for (const auto expected : {example.statistics, example.essential, example.tracked}) {
      EXPECT_EQ(world.sdk->get(++id), expected) << id;
      EXPECT_EQ(uploaded(upload, id), rawValue(expected)) << id;
    }
    EXPECT_EQ(upload.at("purpose_consents").at(1).at("is_essential"), true);
    EXPECT_EQ(boost::json::serialize(upload.at("permissions")),
              R"([{"permission":"NSCameraUsageDescription","consent_status":"granted","timestamp":1700000000},)"
              R"({"permission":"NSContactsUsageDescription","consent_status":"declined","timestamp":1700000000}])");
    upload.erase("purpose_consents");
    upload.erase("permissions");
    EXPECT_EQ(upload, boost::json::object({{"uuid", "SUBJECT"},
                                           {"app_uuid", "a1"},
                                           {"device", "Test device"},
                                           {"implicit_consent", false},
                                           {"version", 5},
                                           {"is_test_mode", false},
                                           {"ad_id", example.tracking == authorized ? "AD-ID" : ""},
                                           {"platform", "ios"},
                                           {"banner_info", "opt-in"},
                                           {"sdk_version", "1.2.3"}}));
    EXPECT_EQ(world.server.seen(uploadPath).front().headers.find("X-Auth-Token")->second, "secret-token");
  }
}

// The consent from a stored decision and the tracking authorization.
TEST(Tracking, GovernsThePurposesBoundToIt) {
  struct Case {
    std::string stored;
    bool authorized;
    ConsentStatus expected;
    bool changes;
  };
  const Case cases[] = {{"", true, granted, true},
                        {"", false, declined, false},
                        {"granted", true, granted, false},
                        {"declined", true, granted, true},
                        {"withdrawn", true, granted, true},
                        {"granted", false, withDrawn, true},
                        {"withdrawn", false, withDrawn, false},
                        {"declined", false, declined, false},
                        {"not_determined", false, declined, true}};
  for (const Case& example : cases) {
    World world;
    world.tracking = example.authorized ? TrackingAuthorization::authorized : TrackingAuthorization::denied;
    world.store(key::currentComplianceType, std::string("opt-in"));
    if (!example.stored.empty()) world.store("3", example.stored);
    world.start();
    SCOPED_TRACE(example.stored + (example.authorized ? ", authorized" : ", denied"));
    EXPECT_EQ(world.sdk->get(3), example.expected);
    EXPECT_EQ(world.stored().pendingPurposes(),
              example.changes ? std::vector<std::int64_t>{3} : std::vector<std::int64_t>());
    EXPECT_EQ(world.stored().consentGivenType(), GivenType::noAction) << "the device decided, not the user";
    const auto purposes = world.sdk->getPurposeConsents().get();
    EXPECT_EQ(purposes.at(2).consentStatus, example.expected);
    EXPECT_EQ(purposes.at(2).isATTMapped, true);
    EXPECT_EQ(purposes.at(2).attDescription.value().at("en"), "Tracking");
    EXPECT_EQ(purposes.at(0).isATTMapped, false);
  }
}

TEST(Decision, ChangesTheTimestampOnlyWithTheStatus) {
  World world;
  world.start();
  EXPECT_TRUE(world.sdk->set({.purposeId = 1}, granted));
  EXPECT_EQ(world.stored().integer(key::purposesChangeTimestamp, 0), startSeconds);
  world.advance(10s);
  EXPECT_TRUE(world.sdk->set({.purposeId = 1}, granted));
  EXPECT_EQ(world.stored().integer(key::purposesChangeTimestamp, 0), startSeconds);
  EXPECT_TRUE(world.sdk->set({.purposeId = 1}, declined));
  EXPECT_EQ(world.stored().integer(key::purposesChangeTimestamp, 0), startSeconds + 10);
  EXPECT_TRUE(world.stored().boolean(key::arePurposesChanged));
  EXPECT_FALSE(world.sdk->set(Purpose(), granted)) << "a purpose without an identifier";
}

TEST(Decision, FiftyInARowMakeOneUpload) {
  World world;
  world.start();
  for (int i = 0; i < 50; ++i) ASSERT_TRUE(world.sdk->set({.purposeId = 1 + i % 3}, i < 25 ? granted : declined));
  EXPECT_EQ(world.stored().pendingPurposes().size(), 3u);
  world.advance(999ms);
  EXPECT_TRUE(world.uploads().empty());
  world.advance(1ms);
  ASSERT_EQ(world.uploads().size(), 1u);
  EXPECT_EQ(uploaded(world.uploads().front(), 1), "declined");
  ASSERT_TRUE(world.sdk->set({.purposeId = 1}, granted));
  world.advance(1s);
  ASSERT_EQ(world.uploads().size(), 2u);
  EXPECT_EQ(uploaded(world.uploads().back(), 1), "granted");
  EXPECT_EQ(uploaded(world.uploads().back(), 2), "") << "only what is pending is sent";
}

TEST(UploadReply, DecidesWhatStaysPending) {
  struct Case {
    std::string body;
    int status;
    bool flagged, kept, retried;
    std::string logged;
  };
  for (const Case& reply :
       {Case{R"({"status":0,"message":"saved\nwell"})", 200, false, false, false, "[INFO]saved\\nwell"},
        Case{R"({"status":1,"message":"busy"})", 200, true, true, true, "[ERROR]busy"},
        Case{R"({"status":2,"message":"odd"})", 200, false, true, false, "[INFO]odd"},
        Case{"{}", 500, true, true, true, "[ERROR]Failed with Status (500)"},
        Case{"[]", 200, true, true, true, "Failed to Decode GenericResponse : "}}) {
    SCOPED_TRACE(reply.logged);
    World world;
    world.server.onUpload(json(reply.body, reply.status));
    world.start();
    EXPECT_TRUE(world.sdk->acceptOrReject(true).get()) << "stored, whatever the server says";
    EXPECT_EQ(world.stored().boolean(key::uploadConsentRequestPending), reply.flagged);
    EXPECT_EQ(world.stored().pendingPurposes().size(), reply.kept ? 3u : 0u);
    EXPECT_EQ(world.stored().pendingPermissions().size(), reply.kept ? 2u : 0u);
    EXPECT_TRUE(contains(world.log(), reply.logged));
    EXPECT_FALSE(contains(world.log(), "secret-token"));

    world.server.onUpload(json(saved));
    world.advance(61 * 30s);  // past one period of the recurring check
    EXPECT_EQ(world.uploads().size(), reply.retried ? 2u : 1u);
    EXPECT_TRUE(world.sdk->uploadPendingConsents().get());
    EXPECT_TRUE(world.stored().pendingPurposes().empty());
    EXPECT_FALSE(world.stored().boolean(key::uploadConsentRequestPending));
  }
}

// The server has the earlier decision, so the later one must be uploaded too.
TEST(Upload, DecisionMadeMeanwhileStaysPending) {
  World world;
  world.start();
  HeldUploads held(world.server);
  ASSERT_TRUE(world.sdk->set({.purposeId = 1}, granted));
  ASSERT_TRUE(world.sdk->set({.purposeId = 2}, granted));
  auto first = world.sdk->uploadPendingConsents();
  held.waitForOne();
  ASSERT_TRUE(world.sdk->set({.purposeId = 1}, declined));
  ASSERT_TRUE(world.sdk->set({.purposeId = 3}, granted));
  auto second = world.sdk->uploadPendingConsents();
  EXPECT_EQ(world.uploads().size(), 1u) << "uploads do not overtake one another";
  held.release();
  first.wait();
  EXPECT_TRUE(second.get());
  ASSERT_EQ(world.uploads().size(), 2u);
  EXPECT_EQ(uploaded(world.uploads().back(), 1), "declined");
  EXPECT_EQ(uploaded(world.uploads().back(), 2), "") << "what the server has is not sent again";
  EXPECT_EQ(uploaded(world.uploads().back(), 3), "granted");
  EXPECT_TRUE(world.stored().pendingPurposes().empty());
}

TEST(Upload, OfTheHostsOwnRequestSettlesThePending) {
  World world;
  world.start();
  world.sdk->set({.purposeId = 1}, granted);
  PostConsentsRequest request;
  request.uuid = "x";
  world.sdk->uploadConsents(world.server.url(), request).wait();
  EXPECT_TRUE(world.stored().pendingPurposes().empty());
  world.sdk->uploadConsents("::", request).wait();
  EXPECT_TRUE(world.stored().boolean(key::uploadConsentRequestPending));
  EXPECT_TRUE(contains(world.log(), "Invalid URL error ocurred.\n::"));
}

TEST(Check, DoesNotAnswerAReconsent) {
  World world;
  world.start();
  ASSERT_TRUE(world.sdk->isBannerDue());
  world.sdk->acceptOrReject(true).wait();
  auto newer = validConfiguration();
  newer["version"] = 6;
  newer["purposes"].as_array().emplace_back(boost::json::object({{"purpose_id", 4}}));
  world.server.serve(newer);
  world.advance(2h);
  world.sdk->checkConsents().wait();
  EXPECT_EQ(world.text("4"), "declined");
  world.start();
  EXPECT_TRUE(world.sdk->isBannerDue());
}

TEST(Check, RunsPeriodicallyAfterAnAnswer) {
  World world;
  ConsentSDKOptions options = world.options();
  options.consentsCheckInterval = 60;
  world.start(options);
  world.advance(10min);
  EXPECT_EQ(world.log().find("Purposes consent checks executed", world.log().find("checks executed.") + 1),
            std::string::npos)
      << "no timer before the first consent";
  world.server.onUpload(json("{}", 503));
  world.sdk->acceptOrReject(true).wait();
  world.advance(59s);
  EXPECT_EQ(world.uploads().size(), 1u);
  world.advance(1s);
  EXPECT_EQ(world.uploads().size(), 2u);
  world.advance(120s);
  EXPECT_EQ(world.uploads().size(), 4u);
  world.restart();
  world.start(options);
  EXPECT_EQ(world.uploads().size(), 5u) << "what was left behind goes out at the start";
  world.advance(60s);
  EXPECT_EQ(world.uploads().size(), 6u) << "the next process goes on";
}

TEST(Leaving, WithAnUploadUnderWayLosesNothing) {
  World world;
  world.start();
  HeldUploads held(world.server);
  auto answer = world.sdk->acceptOrReject(true);
  held.waitForOne();
  world.sdk.reset();
  answer.wait();
  held.release();
  world.restart();
  EXPECT_EQ(world.sdk->get(1), granted);
  EXPECT_EQ(world.stored().pendingPurposes().size(), 3u);
}

}  // namespace
}  // namespace quillon::test
