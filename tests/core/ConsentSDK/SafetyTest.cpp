// Fail-closed behaviour, and a way out of every state, on an in-memory device on which every state can be reached.
#include <gtest/gtest.h>

#include <algorithm>
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>

#include "platform/ScreenServices.h"
#include "quillon/Held.h"
#include "quillon/Testing.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

using namespace std::chrono_literals;
using enum ConsentStatus;

std::string documentOf(std::string_view type, bool tracking = false) {
  auto document = validConfiguration();
  document["is_att_enabled"] = tracking;
  bannerOf(document)["compliance_type"] = type;
  return boost::json::serialize(document);
}

std::string withoutBanner() {
  auto document = validConfiguration();
  document.erase("banner_config");
  return boost::json::serialize(document);
}

class Safety : public ::testing::Test {
 protected:
  void launch(const std::function<void(ConsentSDKOptions&)>& change = {}) {
    sdk.reset();
    sdk = device.launch();
    ConsentSDKOptions options = device.options();
    if (change) change(options);
    sdk->setup(options);
    device.settle();
  }
  std::size_t asked(std::string_view path) const {
    return static_cast<std::size_t>(std::ranges::count_if(
        device.requests(), [&](const auto& request) { return request.url.find(path) != std::string::npos; }));
  }
  boost::json::object lastUpload() const { return boost::json::parse(device.uploads().back()).as_object(); }

  quillon::testing::Device device;
  std::unique_ptr<ConsentSDK> sdk;
};

// Purpose 1 is optional, 2 essential, 3 bound to tracking where enabled; 9 is not listed.
TEST_F(Safety, NothingIsAllowedThatNobodyAllowed) {
  const auto allowed = [this] {
    std::string ids;
    for (const std::int64_t id : {1, 2, 3, 9}) {
      if (sdk->isAllowed(id)) ids += std::to_string(id);
    }
    return ids;
  };
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
                                            {documentOf("opt-out", true), "12"},
                                            {withoutBanner(), "2"}}) {
    SCOPED_TRACE(document);
    quillon::testing::Device another;
    another.publish(document);
    sdk = another.launch();
    sdk->setup(another.options());
    another.settle();
    EXPECT_EQ(allowed(), undecided);
    sdk->set({.purposeId = 9}, granted);
    sdk->set({.purposeId = 1}, declined);
    std::string decided = undecided;
    std::erase(decided, '1');
    EXPECT_EQ(allowed(), decided + "9");
    sdk->removeConsents();
    EXPECT_EQ(allowed(), undecided) << "only what the configuration in force allows";
    sdk->set({.purposeId = 1}, granted);
    sdk->close();
    EXPECT_EQ(allowed(), "1") << "only what was decided";
    EXPECT_EQ(sdk->checkConsentBy(VantariKey::cameraUsageDescription).get(), notDetermined);
    sdk.reset();
  }
}

TEST_F(Safety, APermissionIsAllowedOnlyWhileTheDeviceSaysSo) {
  const VantariKey camera(VantariKey::cameraUsageDescription);
  device.publish(documentOf("opt-in"));
  launch();
  EXPECT_FALSE(sdk->isAllowed(camera));
  EXPECT_TRUE(sdk->set({.permissionId = camera}, granted));
  EXPECT_FALSE(sdk->isAllowed(camera)) << "what was stored is not what the device says";
  device.setPermission(camera, granted);
  EXPECT_TRUE(sdk->isAllowed(camera));
  device.setPermission(camera, declined);
  EXPECT_FALSE(sdk->isAllowed(camera));
}

TEST_F(Safety, AGateFollowsEveryCauseInTurn) {
  std::string calls;
  device.publish(documentOf("opt-in"));
  launch();
  auto gate = sdk->whileAllowed(1, [&] { calls += '+'; }, [&] { calls += '-'; });
  auto essential = sdk->whileAllowed(2, [&] { calls += 'e'; }, [] {});
  device.settle();
  EXPECT_EQ(calls, "e") << "start, also when it is allowed already";
  sdk->acceptOrReject(true).wait();
  device.settle();
  sdk->set({.purposeId = 1}, declined);
  sdk->set({.purposeId = 1}, granted);  // evaluated at the moment of the call
  device.settle();
  EXPECT_EQ(calls, "e+");
  sdk->removeConsents();
  device.settle();
  EXPECT_EQ(calls, "e+-");
  device.publish(documentOf("opt-out"));
  ConsentSDKOptions fresh = device.options();
  fresh.testingMode = true;
  sdk->setup(fresh);
  device.settle();
  EXPECT_EQ(calls, "e+-+") << "another compliance type";
  gate.end();
  sdk->acceptOrReject(false).wait();
  device.settle();
  EXPECT_EQ(calls, "e+-+");
}

TEST_F(Safety, WhatWaitsForAConsentIsDeliveredOnceOrDroppedOnce) {
  device.publish(documentOf("opt-in"));
  launch();
  auto now = std::chrono::steady_clock::time_point();
  std::string delivered;
  Held<char> events(*sdk, 1, [&](char event) { delivered += event; }, {3, 10s, [&] { return now; }});
  for (const char event : std::string("abcd")) events.add(event);
  EXPECT_EQ(events.dropped(), 1u) << "the oldest goes first";
  now += 11s;
  events.add('e');
  device.settle();
  EXPECT_EQ(delivered, "");
  EXPECT_EQ(events.waiting(), 1u);
  sdk->acceptOrReject(true).wait();
  device.settle();
  events.add('f');
  EXPECT_EQ(delivered, "ef");
  sdk->set({.purposeId = 1}, declined);
  events.add('g');
  device.settle();
  EXPECT_EQ(delivered, "ef");
  EXPECT_EQ(events.dropped(), 5u);
}

TEST_F(Safety, ABannerWithNothingToAnswerRecordsNothing) {
  auto empty = validConfiguration();
  empty["banner_config"] = {{"categories", boost::json::object()},
                            {"names_map", boost::json::object()},
                            {"locations", boost::json::object()}};
  for (const std::string& document : {withoutBanner(), boost::json::serialize(empty)}) {
    device.publish(document);
    launch();
    EXPECT_FALSE(sdk->screens()->recordDefaults({}));
    sdk->checkConsents().wait();
    device.settle();
    EXPECT_TRUE(std::ranges::none_of(sdk->getHistory().get().entries,
                                     [](const HistoryEntry& entry) { return entry.decision.to == granted; }));
  }
}

TEST_F(Safety, OnlyAnExplicitAnswerIsCalledExplicit) {
  device.publish(documentOf("opt-in"));
  launch();
  EXPECT_TRUE(sdk->uploadPendingConsents().get());
  EXPECT_EQ(lastUpload().at("implicit_consent"), true) << "permissions, before any answer";
  sdk->acceptOrReject(false).wait();
  EXPECT_EQ(lastUpload().at("implicit_consent"), false);

  // A later default for a new purpose does not change the given type.
  auto grown = validConfiguration();
  grown["version"] = 6;
  grown["re_consent_enabled"] = false;
  grown["purposes"].as_array().emplace_back(boost::json::object{{"purpose_id", 4}});
  device.publish(boost::json::serialize(grown));
  device.advance(2h);
  EXPECT_TRUE(sdk->isDecided(4));
  EXPECT_EQ(lastUpload().at("implicit_consent"), false);
  EXPECT_EQ(lastUpload().at("ad_id"), "") << "tracking is not authorized";
}

TEST_F(Safety, RemovingLeavesWhatIsInForce) {
  device.publish(documentOf("opt-in"));
  launch();
  std::string heard;
  auto listening = sdk->listenToConsents([&](const Decision& change) {
    if (change.cause == DecisionCause::removed && change.purposeId) heard += std::to_string(*change.purposeId);
  });
  sdk->acceptOrReject(false).wait();
  sdk->removeConsents();
  EXPECT_EQ(sdk->get(1), declined) << "the default of opt-in, without a gap";
  EXPECT_FALSE(sdk->isDecided(1));
  device.settle();
  std::ranges::sort(heard);
  EXPECT_EQ(heard, "123");
  const auto before = asked("config_");
  device.advance(2h);
  sdk->checkConsents().wait();
  EXPECT_GT(asked("config_"), before) << "the document grows old like any other";
  sdk->acceptOrReject(true).wait();
  EXPECT_FALSE(lastUpload().at("uuid").as_string().empty());
}

TEST_F(Safety, AnEssentialPurposeIsGrantedByAnyAnswer) {
  device.publish(documentOf("opt-in"));
  launch();
  EXPECT_TRUE(sdk->set({.purposeId = 2}, declined));
  EXPECT_TRUE(device.log().find("[WARNING]Purpose 2 is essential") != std::string::npos);
  EXPECT_TRUE(sdk->set({.purposeId = 9}, declined));
  EXPECT_TRUE(device.log().find("[WARNING]Purpose 9 is not listed") != std::string::npos);
  EXPECT_TRUE(sdk->screens()->save({{1, false}}, {}));
  EXPECT_EQ(sdk->get(2), granted);
  EXPECT_EQ(sdk->explain(2).get().cause, DecisionCause::essential);
}

TEST_F(Safety, WhatTheDocumentDoesNotListStaysPendingUntilItDoes) {
  device.publish(documentOf("opt-in"));
  launch();
  sdk->acceptOrReject(true).wait();
  sdk->set({.purposeId = 9}, declined);
  device.advance(1h);
  const auto uploads = device.uploads().size();
  device.advance(10h);
  EXPECT_EQ(device.uploads().size(), uploads) << "it causes no upload by itself";
  auto grown = validConfiguration();
  grown["version"] = 6;
  grown["re_consent_enabled"] = false;
  grown["purposes"].as_array().emplace_back(boost::json::object{{"purpose_id", 9}});
  device.publish(boost::json::serialize(grown));
  device.advance(2h);
  EXPECT_NE(boost::json::serialize(lastUpload()).find(R"("purpose_id":9,"consent_status":"declined")"),
            std::string::npos);
}

TEST_F(Safety, AReconnectionIsSpreadAndUploadsWhatIsPending) {
  device.publish(documentOf("opt-in"));
  launch();
  device.setOnline(false);
  sdk->acceptOrReject(true).wait();
  device.setOnline(true);
  device.settle();
  const auto before = device.uploads().size();
  device.advance(61s);
  EXPECT_EQ(device.uploads().size(), before + 1);
  EXPECT_TRUE(sdk->uploadPendingConsents().get());
  EXPECT_EQ(device.uploads().size(), before + 1) << "nothing is left";
}

TEST_F(Safety, AnotherApplicationsDocumentServesNobodyElsesDecisions) {
  device.publish(documentOf("opt-out"));
  launch();
  EXPECT_TRUE(sdk->isAllowed(1));
  const auto another = [](ConsentSDKOptions& options) { options.appId = "other"; };
  device.setOnline(false);
  launch(another);
  EXPECT_EQ(sdk->getStatus(), SDKStatus::ready) << "until its own is there";
  launch();
  sdk->set({.purposeId = 1}, granted);
  launch(another);
  EXPECT_EQ(sdk->getStatus(), SDKStatus::unavailable);
  device.setOnline(true);
  device.advance(2min);
  EXPECT_EQ(sdk->getStatus(), SDKStatus::ready);
  EXPECT_EQ(asked("/other/live/config_en.json"), 3u);
}

TEST_F(Safety, AProcessOfMonthsAsksAgain) {
  device.publish(documentOf("opt-in"));
  launch([](ConsentSDKOptions& options) { options.consentsCheckInterval = 3h; });
  int due = 0;
  auto listening = sdk->listenToBannerDue([&](const BannerExplanation&) { ++due; });
  EXPECT_TRUE(sdk->isBannerDue());
  EXPECT_FALSE(sdk->isBannerDue()) << "it is on screen";
  sdk->acceptOrReject(true).wait();
  EXPECT_EQ(sdk->explainBanner().reason, BannerReason::answered);
  device.advance(24h * 367);
  EXPECT_EQ(due, 1);
  EXPECT_TRUE(sdk->isBannerDue()) << "the interval is over";
  sdk->acceptOrReject(true).wait();
  auto newer = validConfiguration();
  newer["version"] = 6;
  device.publish(boost::json::serialize(newer));
  device.advance(3h);  // one check, the first since the answer
  EXPECT_EQ(due, 2);
  EXPECT_EQ(sdk->explainBanner().reason, BannerReason::reconsent);
  {
    const auto shown = sdk->screens()->shown(ScreenKind::banner);
    EXPECT_TRUE(sdk->isBannerDue());
    EXPECT_EQ(sdk->explainBanner().reason, BannerReason::onScreen);
  }
  EXPECT_TRUE(sdk->isBannerDue()) << "it left the screen without an answer";
  launch();
  device.setDiskFull(true);
  EXPECT_TRUE(sdk->isBannerDue());
  EXPECT_FALSE(sdk->isBannerDue()) << "once a process where nothing can be stored";
}

TEST_F(Safety, ReadinessIsToldToWhoAsksInTheMidst) {
  sdk = device.launch();
  std::vector<SDKStatus> heard;
  device.answer([&](const auto&) -> std::optional<quillon::testing::Response> {
    if (heard.empty()) sdk->isReady([&](SDKStatus status) { heard.push_back(status); });
    return std::nullopt;
  });
  sdk->setup(device.options());
  device.settle();
  EXPECT_EQ(heard, (std::vector{SDKStatus::fetching, SDKStatus::unavailable}));
}

TEST_F(Safety, AFirstLoadThatTakesLongerThanWantedIsNotWaitedFor) {
  auto bundled = [](ConsentSDKOptions& options) { options.readyWithin = 500ms; };
  device.publish(documentOf("opt-in"));
  launch();
  device.advance(2h);
  bool isAsked = false;
  device.answer([&](const auto& request) -> std::optional<quillon::testing::Response> {
    if (request.body.empty()) isAsked = true;
    return std::nullopt;
  });
  launch(bundled);
  EXPECT_TRUE(isAsked);
  EXPECT_EQ(sdk->getStatus(), SDKStatus::ready);
}

TEST_F(Safety, MistakesInOptionsAreToldAndWhatHasOneMeaningIsUnderstood) {
  device.publish(documentOf("opt-in"));
  launch([](ConsentSDKOptions& options) {
    options.cdnUrl.pop_back();  // removes the trailing slash
    options.languageCode = "de_DE";
    options.locationCode = "us-ca";
  });
  EXPECT_EQ(sdk->getStatus(), SDKStatus::ready);
  EXPECT_EQ(device.log().find("[ERROR]"), std::string::npos);
  EXPECT_EQ(asked("/live/config_de.json"), 1u);
  EXPECT_EQ(sdk->screens()->options()->locationCode, "US#CA");

  launch([](ConsentSDKOptions& options) {
    options.appUrl = "app.example.com";
    options.tenantId = "";
    options.languageCode = "german!";
    options.locationCode = "Germany";
    options.readyWithin = -1ms;
    options.webviewConfig = WebViewConfig{{" "}};
  });
  for (const std::string option :
       {"appUrl is \"app.example.com\"", "tenantId is \"\"", "languageCode is \"german!\"",
        "locationCode is \"Germany\"", "readyWithin is -1 ms", "webviewConfig.allowedDomains has an"}) {
    EXPECT_NE(device.log().find("[ERROR]" + option), std::string::npos) << option;
  }
}

}  // namespace
}  // namespace quillon::test
