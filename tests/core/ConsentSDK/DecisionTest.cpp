// Decisions, their subject, and their way to the server.
#include <gtest/gtest.h>

#include <boost/json.hpp>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "tests/support/Contains.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

using namespace std::chrono_literals;
using enum ConsentStatus;

// An upload's statuses, by purpose.
std::string uploaded(const boost::json::object& upload) {
  std::string text;
  for (const auto& consent : upload.at("purpose_consents").as_array()) {
    text += (text.empty() ? "" : " ") + std::to_string(consent.at("purpose_id").as_int64()) + "=" +
            consent.at("consent_status").as_string().c_str();
  }
  return text;
}

TEST(Answer, IsStoredAsOneAndUploaded) {
  World world;
  world.tracking = TrackingAuthorization::authorized;
  world.start();
  ASSERT_TRUE(world.sdk->acceptOrReject(false).get());
  EXPECT_EQ(world.text(key::consentGivenType), "CONSENT_EXPLICIT");
  EXPECT_TRUE(world.stored().pendingPurposes().empty() && world.stored().pendingPermissions().empty());
  ASSERT_EQ(world.uploads().size(), 1u);
  EXPECT_EQ(
      boost::json::serialize(world.uploads().front()),
      R"({"uuid":"SUBJECT","app_uuid":"a1","device":"Test device","implicit_consent":false,"version":5,)"
      R"("purpose_consents":[)"
      R"({"purpose_id":1,"consent_status":"declined","timestamp":1700000000,"is_essential":false},)"
      R"({"purpose_id":2,"consent_status":"granted","timestamp":1700000000,"is_essential":true},)"
      R"({"purpose_id":3,"consent_status":"granted","timestamp":1700000000,"is_essential":false}],)"
      R"("permissions":[{"permission":"NSCameraUsageDescription","consent_status":"granted","timestamp":1700000000},)"
      R"({"permission":"NSContactsUsageDescription","consent_status":"declined","timestamp":1700000000}],)"
      R"("is_test_mode":false,"ad_id":"AD-ID","banner_info":"opt-in","platform":"ios","sdk_version":"1.2.3"})");
  EXPECT_EQ(world.server.seen(uploadPath).front().headers.find("X-Auth-Token")->second, "secret-token");
  world.tracking = TrackingAuthorization::denied;
  ASSERT_TRUE(world.sdk->acceptOrReject(true).get());
  EXPECT_EQ(uploaded(world.uploads().back()), "1=granted 2=granted 3=withdrawn");
  EXPECT_EQ(world.uploads().back().at("ad_id"), "");
}

// The consent from a stored decision and the tracking authorization.
TEST(Tracking, GovernsThePurposesBoundToIt) {
  const std::tuple<std::string, bool, ConsentStatus, bool> cases[] = {{"", true, granted, true},
                                                                      {"", false, declined, false},
                                                                      {"granted", true, granted, false},
                                                                      {"declined", true, granted, true},
                                                                      {"withdrawn", true, granted, true},
                                                                      {"granted", false, withDrawn, true},
                                                                      {"withdrawn", false, withDrawn, false},
                                                                      {"declined", false, declined, false},
                                                                      {"not_determined", false, declined, true}};
  for (const auto& [stored, authorized, expected, changes] : cases) {
    World world;
    world.tracking = authorized ? TrackingAuthorization::authorized : TrackingAuthorization::denied;
    world.store(key::currentComplianceType, std::string("opt-in"));
    if (!stored.empty()) world.store("3", stored);
    world.start();
    SCOPED_TRACE(stored + (authorized ? ", authorized" : ", denied"));
    EXPECT_EQ(world.sdk->get(3), expected);
    EXPECT_EQ(world.stored().pendingPurposes(), std::vector<std::int64_t>(changes ? 1 : 0, 3));
    EXPECT_EQ(world.stored().consentGivenType(), GivenType::noAction) << "the device decided, not the user";
    const auto purposes = world.sdk->getPurposeConsents().get();
    EXPECT_EQ(purposes.at(2).consentStatus, expected);
    EXPECT_EQ(purposes.at(2).attDescription.value().at("en"), "Tracking");
    EXPECT_TRUE(purposes.at(2).isATTMapped.value() && !purposes.at(0).isATTMapped.value());
  }
}

TEST(Decision, FiftyInARowMakeOneUploadOfWhatIsPending) {
  World world;
  world.start();
  for (int i = 0; i < 50; ++i) ASSERT_TRUE(world.sdk->set({.purposeId = 1 + i % 3}, i < 25 ? granted : declined));
  ASSERT_TRUE(world.sdk->set({.purposeId = 9}, granted));
  world.advance(999ms);
  EXPECT_TRUE(world.uploads().empty());
  world.advance(1ms);
  ASSERT_EQ(world.uploads().size(), 1u);
  EXPECT_EQ(uploaded(world.uploads().front()), "1=declined 2=declined 3=declined");
  for (const auto& [status, changed] : {std::pair(declined, startSeconds), {granted, startSeconds + 1}}) {
    ASSERT_TRUE(world.sdk->set({.purposeId = 1}, status));
    EXPECT_EQ(world.stored().integer(key::purposesChangeTimestamp, 0), changed) << "changes with the status only";
  }
  world.advance(1s);
  EXPECT_EQ(uploaded(world.uploads().back()), "1=granted");
  world.advance(24h);
  EXPECT_EQ(world.uploads().size(), 2u) << "what the document does not list causes no upload";
  EXPECT_EQ(world.stored().pendingPurposes(), std::vector<std::int64_t>{9});
  world.server.serve(configurationWith({{"version", 6}, {"purposes", purposesOf({9})}}));
  world.startLater();
  EXPECT_EQ(uploaded(world.uploads().back()), "9=granted") << "until one lists it";
  EXPECT_FALSE(world.sdk->set(Purpose(), granted)) << "a purpose without an identifier";
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

    world.server.onUpload(json(saved));
    world.advance(30min - 1s);
    EXPECT_EQ(world.uploads().size(), 1u);
    world.advance(1s);  // one period of the recurring check, which the answer has begun
    EXPECT_EQ(world.uploads().size(), reply.retried ? 2u : 1u);
    EXPECT_TRUE(world.sdk->uploadPendingConsents().get());
    EXPECT_TRUE(world.stored().pendingPurposes().empty());
    EXPECT_FALSE(world.stored().boolean(key::uploadConsentRequestPending));
  }
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

TEST(Subject, IsKeptUntilItIsRemoved) {
  World world;
  ConsentSDKOptions options = world.options();
  options.subjectId.reset();
  world.start(options);
  const auto subject = world.text(key::subjectId).value();
  EXPECT_EQ(subject.size(), 36u);
  world.restart();
  world.start(options);
  EXPECT_EQ(world.text(key::subjectId), subject);
  world.sdk->removeConsents();
  world.start(options);
  EXPECT_NE(world.text(key::subjectId), subject);
  options.subjectId = "given by the host";
  world.start(options);
  EXPECT_EQ(world.text(key::subjectId), "given by the host");
}

TEST(Check, IntervalIsAMinuteToAYear) {
  constexpr int year = 31'536'000;
  for (const auto& [given, kept] : {std::pair{-5, 60}, {60, 60}, {61, 61}, {7200, 7200}, {year + 1, year}}) {
    EXPECT_EQ(ConsentsCheckInterval(given).count(), kept) << given;
  }
  EXPECT_EQ(ConsentsCheckInterval(std::chrono::milliseconds(90'500)).count(), 90);
  EXPECT_EQ(ConsentsCheckInterval(std::chrono::seconds::max()).count(), year);
  EXPECT_EQ(ConsentsCheckInterval(std::chrono::hours::min()).count(), 60);
}

}  // namespace
}  // namespace quillon::test
