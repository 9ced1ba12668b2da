// Fail-closed behaviour, and a way out of every state.
#include <gtest/gtest.h>

#include <boost/json/serialize.hpp>

#include "quillon/Held.h"
#include "tests/support/Contains.h"
#include "tests/support/OnDevice.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

using namespace std::chrono_literals;
using enum ConsentStatus;

std::string documentOf(std::string_view type, boost::json::object changes = {}) {
  changes.emplace("is_att_enabled", false);
  auto document = configurationWith(changes);
  if (!type.empty()) bannerOf(document)["compliance_type"] = type;
  return boost::json::serialize(document);
}

struct Safety : ::testing::Test, OnDevice {};

// Purpose 1 is optional, 2 essential, 3 bound to tracking where enabled; 9 is not listed.
TEST_F(Safety, NothingIsAllowedThatNobodyAllowed) {
  sdk = device.launch();
  EXPECT_EQ(allowed(), "") << "before set-up";
  launch();
  EXPECT_EQ(sdk->get(1), granted) << "the letter of the default";
  EXPECT_EQ(allowed(), "") << "no configuration could be had";
  EXPECT_TRUE(sdk->explain(1).get().text.ends_with("no configuration is known yet."));
  EXPECT_FALSE(sdk->isBannerDue());
  EXPECT_EQ(sdk->explainBanner().reason, BannerReason::noConfiguration);

  for (const auto& [document, undecided] : {std::pair{documentOf("opt-in"), "2"},
                                            {documentOf("opt-out"), "123"},
                                            {documentOf("notice-only"), "123"},
                                            {documentOf("opt-out", {{"is_att_enabled", true}}), "12"},
                                            {documentOf("opt-out", {{"is_att_enabled", nullptr}}), "123"},
                                            {documentOf("", {{"banner_config", nullptr}}), "2"}}) {
    SCOPED_TRACE(document);
    OnDevice another;
    another.device.publish(document);
    another.launch();
    EXPECT_EQ(another.allowed(), undecided);
    another.sdk->set({.purposeId = 9}, granted);
    another.sdk->set({.purposeId = 1}, declined);
    std::string decided = undecided;
    std::erase(decided, '1');
    EXPECT_EQ(another.allowed(), decided + "9");
    another.sdk->removeConsents();
    EXPECT_EQ(another.allowed(), undecided) << "only what the configuration in force allows";
    another.sdk->set({.purposeId = 1}, granted);
    another.sdk->close();
    EXPECT_EQ(another.allowed(), "1") << "only what was decided";
  }
}

TEST_F(Safety, APermissionIsAllowedOnlyWhileTheDeviceSaysSo) {
  const VantariKey camera(VantariKey::cameraUsageDescription);
  device.publish(documentOf("opt-in"));
  launch();
  EXPECT_TRUE(sdk->set({.permissionId = camera}, granted));
  EXPECT_FALSE(sdk->isAllowed(camera)) << "what was stored is not what the device says";
  for (const auto status : {granted, declined}) {
    device.setPermission(camera, status);
    EXPECT_EQ(sdk->isAllowed(camera), status == granted);
  }
}

TEST_F(Safety, WhatWaitsForAConsentIsLimitedInNumberAndAge) {
  device.publish(documentOf("opt-in"));
  launch();
  auto now = std::chrono::steady_clock::time_point();
  std::string delivered;
  Held<char> events(*sdk, 1, [&](char event) { delivered += event; }, {3, 10s, [&] { return now; }});
  for (const char event : std::string("abcd")) events.add(event);
  EXPECT_EQ(events.dropped(), 1u) << "the oldest goes first";
  now += 11s;
  events.add('e');
  EXPECT_EQ(events.waiting(), 1u);
  sdk->acceptOrReject(true).wait();
  device.settle();
  EXPECT_EQ(delivered, "e");
}

TEST_F(Safety, ABannerWithNothingToAnswerRecordsNothing) {
  const boost::json::object none;
  const boost::json::object empty{{"categories", none}, {"names_map", none}, {"locations", none}};
  for (const auto& banners : {boost::json::value(nullptr), boost::json::value(empty)}) {
    device.publish(documentOf("", {{"banner_config", banners}}));
    launch();
    EXPECT_FALSE(sdk->screens()->recordDefaults({}));
    sdk->checkConsents().wait();
    EXPECT_FALSE(sdk->isDecided(1) || sdk->isDecided(2));
  }
}

// The simulation has the combinations.
TEST_F(Safety, APrivacySignalIsAnOptOutUnlessTheUserHasAnsweredAndEndsWithTheSignal) {
  // The user's answer on purpose 1, and what is allowed without the signal and with it.
  const std::tuple<std::optional<ConsentStatus>, const char*, const char*> rows[] = {
      {std::nullopt, "123", "23"}, {granted, "123", "123"}, {declined, "23", "23"}};
  device.publish(documentOf("opt-out", {{"privacy_signal_purposes", boost::json::array{1, 2}}}));
  for (const bool isDevices : {true, false}) {
    const auto give = [&](bool isGiven) {
      if (isDevices) device.setPrivacySignal(isGiven);
      setup(
          [&](ConsentSDKOptions& options) { options.privacySignal = PrivacySignal{.isGiven = isGiven && !isDevices}; });
      device.settle();
    };
    for (const auto& [answer, without, with] : rows) {
      SCOPED_TRACE(std::string(isDevices ? "the device's" : "the application's") + ", without it " + without);
      launch();
      sdk->removeConsents();
      if (answer) sdk->set({.purposeId = 1}, *answer);
      give(true);
      EXPECT_EQ(allowed(), with);
      const auto why = sdk->explain(1).get();
      EXPECT_EQ(why.cause, answer ? DecisionCause::user : DecisionCause::signal);
      EXPECT_EQ(why.text.starts_with("A privacy signal is honoured: declined on "), !answer) << why.text;
      launch();
      EXPECT_EQ(allowed(), without) << "the application does not honour it";
      give(false);
      EXPECT_EQ(allowed(), without) << "it ends with the signal";
    }
  }
}

TEST_F(Safety, RemovingLeavesWhatIsInForce) {
  device.publish(documentOf("opt-in"));
  launch();
  sdk->acceptOrReject(false).wait();
  sdk->removeConsents();
  EXPECT_EQ(sdk->get(1), declined) << "the default of opt-in, without a gap";
  EXPECT_FALSE(sdk->isDecided(1));
  const auto before = asked("config_");
  device.advance(61min);
  sdk->checkConsents().wait();
  EXPECT_GT(asked("config_"), before) << "the document grows old like any other";
}

TEST_F(Safety, AReconnectionUploadsWhatIsPendingWithinAMinute) {
  device.publish(documentOf("opt-in"));
  launch();
  device.setOnline(false);
  sdk->acceptOrReject(true).wait();
  device.setOnline(true);
  device.settle();
  const auto before = device.uploads().size();
  device.advance(61s);
  EXPECT_EQ(device.uploads().size(), before + 1);
}

TEST_F(Safety, AnotherApplicationsDocumentServesNobodyElsesDecisions) {
  device.publish(documentOf("opt-out"));
  launch();
  const auto another = [](ConsentSDKOptions& options) { options.appId = "other"; };
  device.setOnline(false);
  launch(another);
  EXPECT_EQ(sdk->getStatus(), SDKStatus::ready) << "until its own is there";
  EXPECT_EQ(asked("/other/"), 1u) << "a document of another application is not fresh";
  launch();
  sdk->set({.purposeId = 1}, granted);
  launch(another);
  EXPECT_EQ(sdk->getStatus(), SDKStatus::unavailable);
  device.setOnline(true);
  device.advance(2min);
  EXPECT_EQ(sdk->getStatus(), SDKStatus::ready);
}

TEST_F(Safety, AProcessOfMonthsAsksAgain) {
  device.publish(documentOf("opt-in"));
  launch([](ConsentSDKOptions& options) { options.consentsCheckInterval = 3h; });
  int due = 0;
  auto listening = sdk->listenToBannerDue([&](const BannerExplanation&) { ++due; });
  EXPECT_TRUE(sdk->isBannerDue());
  sdk->acceptOrReject(true).wait();
  device.advance(24h * 367);
  EXPECT_EQ(due, 1);
  EXPECT_TRUE(sdk->isBannerDue()) << "the interval is over";
  sdk->acceptOrReject(true).wait();
  device.publish(documentOf("opt-in", {{"version", 6}}));
  device.advance(3h);  // one check, the first since the answer
  EXPECT_EQ(due, 2);
  EXPECT_EQ(sdk->explainBanner().reason, BannerReason::reconsent);
  {
    const auto shown = sdk->screens()->shown(ScreenKind::banner);
    EXPECT_TRUE(sdk->isBannerDue());
  }
  EXPECT_TRUE(sdk->isBannerDue()) << "it left the screen without an answer";
  launch();
  device.setDiskFull(true);
  EXPECT_TRUE(sdk->isBannerDue());
  EXPECT_FALSE(sdk->isBannerDue()) << "once a process where nothing can be stored";
}

TEST_F(Safety, MistakesAreToldAndWhatHasOneMeaningIsUnderstood) {
  device.publish(documentOf("opt-in"));
  launch([](ConsentSDKOptions& options) {
    options.cdnUrl.pop_back();  // removes the trailing slash
    options.languageCode = "de_DE";
    options.locationCode = "us-ca";
  });
  EXPECT_EQ(asked("/live/config_de.json"), 1u);
  EXPECT_EQ(sdk->screens()->options()->locationCode, "US#CA");
  EXPECT_TRUE(sdk->screens()->options()->cdnUrl.ends_with('/'));
  EXPECT_EQ(device.log().find("[ERROR]"), std::string::npos);
  sdk->set({.purposeId = 2}, declined);
  sdk->set({.purposeId = 9}, declined);
  launch([](ConsentSDKOptions& options) {
    options.appUrl = "app.example.com";
    options.tenantId = "";
    options.languageCode = "german!";
    options.locationCode = "Germany";
    options.readyWithin = -1ms;
    options.webviewConfig = WebViewConfig{{" "}};
  });
  for (const char* said :
       {"[WARNING]Purpose 2 is essential", "[WARNING]Purpose 9 is not listed", "[ERROR]appUrl is \"app.example.com\"",
        "[ERROR]tenantId is \"\"", "[ERROR]languageCode is \"german!\"", "[ERROR]locationCode is \"Germany\"",
        "[ERROR]readyWithin is -1 ms", "[ERROR]webviewConfig.allowedDomains has an"}) {
    EXPECT_TRUE(contains(device.log(), said));
  }

  device.publish(boost::json::serialize(configurationOfTwoLaws("DE")));
  device.advance(2h);
  launch([](ConsentSDKOptions& options) { options.locationCode = "DE#BE"; });
  EXPECT_FALSE(contains(device.log(), "No banner of the configuration is for DE"));
  launch([](ConsentSDKOptions& options) { options.locationCode = "BR"; });
  EXPECT_TRUE(contains(device.log(), "[WARNING]No banner of the configuration is for BR; it knows DE, default"));
}

}  // namespace
}  // namespace quillon::test
