// The effect of privacy signals on purposes, on an in-memory device.
#include <gtest/gtest.h>

#include <algorithm>
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>

#include "platform/ScreenServices.h"
#include "quillon/RawValue.h"
#include "quillon/Testing.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

using enum ConsentStatus;

// Purposes 1, 2 (essential) and 3 (governed by app tracking) are mapped; 4 is not.
std::string signalDocumentOf(std::string_view type, bool hasUnmapped = true) {
  auto document = validConfiguration();
  bannerOf(document)["compliance_type"] = type;
  document["privacy_signal_purposes"] = {1, 2, 3};
  if (hasUnmapped) document["purposes"].as_array().emplace_back(boost::json::object{{"purpose_id", 4}});
  return boost::json::serialize(document);
}

// The source of the signal, and whether the application honours it.
enum class Given { no, byDevice, byApplication, byDeviceUnheeded };

class PrivacySignalTest : public ::testing::Test {
 protected:
  void launch(const std::optional<PrivacySignal>& signal) {
    sdk.reset();
    sdk = device.launch();
    setup(signal);
    device.settle();
  }
  void setup(const std::optional<PrivacySignal>& signal) {
    ConsentSDKOptions options = device.options();
    options.privacySignal = signal;
    options.testingMode = isAlwaysFresh;
    sdk->setup(options);
  }
  void give(Given signal) {
    device.setPrivacySignal(signal == Given::byDevice || signal == Given::byDeviceUnheeded);
    if (signal == Given::byApplication) setup(PrivacySignal{.isGiven = true});
    device.settle();
  }
  void takeBack(Given signal) {
    device.setPrivacySignal(false);
    if (signal == Given::byApplication) setup(PrivacySignal{});
    device.settle();
  }
  std::string allowed() const {
    std::string ids;
    for (const std::int64_t id : {1, 2, 3, 4}) {
      if (sdk->isAllowed(id)) ids += std::to_string(id);
    }
    return ids;
  }
  std::string causes() const {
    std::string text;
    for (const auto& entry : sdk->getHistory().get().entries) {
      if (entry.decision.purposeId == 1) text = std::string(rawValue(entry.decision.cause)) + " " + text;
    }
    return text;
  }

  bool isAlwaysFresh = false;  // no document is cached
  quillon::testing::Device device;
  std::unique_ptr<ConsentSDK> sdk;
};

enum class Decided { not_, grantedByUser, declinedByUser, byDefault };

struct Row {
  const char* type;
  Decided decided;
  const char* without;  // what is allowed without a signal
  const char* with;
};

// All combinations of signal, compliance type and stored decision. Purpose 3 needs the device's authorization in all of
// them.
constexpr Row rule[] = {
    {"opt-in", Decided::not_, "2", "2"},
    {"opt-in", Decided::byDefault, "2", "2"},
    {"opt-in", Decided::grantedByUser, "12", "12"},
    {"opt-in", Decided::declinedByUser, "2", "2"},
    {"opt-out", Decided::not_, "124", "24"},
    {"opt-out", Decided::byDefault, "124", "24"},
    {"opt-out", Decided::grantedByUser, "124", "124"},
    {"opt-out", Decided::declinedByUser, "24", "24"},
    {"notice-only", Decided::not_, "124", "24"},
    {"notice-only", Decided::byDefault, "124", "24"},
    {"notice-only", Decided::grantedByUser, "124", "124"},
    {"notice-only", Decided::declinedByUser, "24", "24"},
};

TEST_F(PrivacySignalTest, CountsAsAnOptOutUnlessTheUserHasAnsweredAndEndsWithTheSignal) {
  isAlwaysFresh = true;
  for (const Row& row : rule) {
    for (const Given signal : {Given::no, Given::byDevice, Given::byApplication, Given::byDeviceUnheeded}) {
      SCOPED_TRACE(::testing::Message() << row.type << " " << static_cast<int>(row.decided) << " "
                                        << static_cast<int>(signal));
      sdk.reset();
      device.setPrivacySignal(false);
      device.publish(signalDocumentOf(row.type));
      launch(signal == Given::byDeviceUnheeded ? std::nullopt : std::optional(PrivacySignal{}));
      sdk->removeConsents();
      device.settle();
      const bool isUsers = row.decided == Decided::grantedByUser || row.decided == Decided::declinedByUser;
      if (isUsers) sdk->set({.purposeId = 1}, row.decided == Decided::grantedByUser ? granted : declined);
      EXPECT_TRUE(row.decided != Decided::byDefault || sdk->screens()->recordDefaults({}));
      device.settle();
      EXPECT_EQ(allowed(), row.without);

      give(signal);
      const bool counts = signal == Given::byDevice || signal == Given::byApplication;
      EXPECT_EQ(allowed(), counts ? row.with : row.without);
      const auto why = sdk->explain(1).get();
      EXPECT_EQ(why.cause == DecisionCause::signal, counts && !isUsers) << why.text;
      EXPECT_EQ(why.status, sdk->get(1));
      if (why.cause == DecisionCause::signal) {
        EXPECT_EQ(why.status, declined);
        EXPECT_TRUE(why.text.starts_with("A privacy signal is honoured: declined on ")) << why.text;
      }

      takeBack(signal);
      EXPECT_EQ(allowed(), row.without) << "it ends with the signal";
      EXPECT_NE(sdk->explain(1).get().cause, DecisionCause::signal);
      EXPECT_TRUE(!isUsers || causes() == "user ") << causes() << "though a signal leaves an answer alone";
    }
  }
}

TEST_F(PrivacySignalTest, HoldsFromTheSetUpOnAndWhateverElseIsNotKnown) {
  device.publish(signalDocumentOf("opt-out"));
  launch(std::nullopt);
  EXPECT_TRUE(sdk->screens()->recordDefaults({}));
  device.settle();
  EXPECT_EQ(allowed(), "124");
  device.setPrivacySignal(true);
  device.setOnline(false);
  sdk = device.launch();
  setup(PrivacySignal{});
  EXPECT_EQ(allowed(), "24") << "before anything was loaded";
  EXPECT_EQ(sdk->get(1), declined);
  setup(PrivacySignal{.purposes = {{4}}});
  device.settle();
  EXPECT_EQ(allowed(), "12") << "as the application maps it";
  setup(std::nullopt);
  device.settle();
  EXPECT_EQ(allowed(), "124") << "the application honours it no longer";

  device.setPrivacySignal(true);
  sdk = device.launch();
  ConsentSDKOptions other = device.options();
  other.privacySignal.emplace();
  other.testingMode = true;  // drops the cached document
  sdk->setup(other);
  device.settle();
  EXPECT_EQ(sdk->getStatus(), SDKStatus::unavailable);
  EXPECT_EQ(allowed(), "") << "nobody knows what the signal stands for";
}

TEST_F(PrivacySignalTest, IsSeenByGatesAndListeners) {
  device.publish(signalDocumentOf("opt-out"));
  launch(PrivacySignal{});
  std::string seen;
  auto gate = sdk->whileAllowed(1, [&] { seen += '+'; }, [&] { seen += '-'; });
  auto listening = sdk->listenToConsents([&](const Decision& change) {
    if (change.purposeId == 1) seen += std::string(rawValue(change.cause)) + " ";
  });
  device.settle();
  device.setPrivacySignal(true);
  EXPECT_FALSE(sdk->isAllowed(1)) << "at once";
  device.settle();
  device.setPrivacySignal(false);
  device.settle();
  std::ranges::sort(seen);
  EXPECT_EQ(std::ranges::count(seen, '+'), 2);
  EXPECT_EQ(std::ranges::count(seen, '-'), 1);
  EXPECT_EQ(seen.size(), std::string("+-+signal removed ").size());
  device.setPrivacySignal(true);
  device.settle();
  sdk->removeConsents();
  EXPECT_EQ(allowed(), "24") << "removing consents removes no signal";
  device.settle();
  EXPECT_EQ(sdk->explain(1).get().cause, DecisionCause::signal);
}

TEST_F(PrivacySignalTest, SettlesTheBannerOnlyWhenItLeavesNothingToAsk) {
  int due = 0;
  device.publish(signalDocumentOf("opt-in", false));
  launch(PrivacySignal{});
  auto listening = sdk->listenToBannerDue([&](const BannerExplanation&) { ++due; });
  device.setPrivacySignal(true);
  device.settle();
  EXPECT_EQ(sdk->explainBanner().reason, BannerReason::signal);
  EXPECT_FALSE(sdk->explainBanner().isDue);
  EXPECT_FALSE(sdk->isBannerDue());
  EXPECT_EQ(due, 0);
  device.setPrivacySignal(false);
  device.settle();
  EXPECT_EQ(due, 1);
  EXPECT_TRUE(sdk->isBannerDue());
  sdk->screens()->shown(ScreenKind::banner).reset();

  device.setPrivacySignal(true);
  device.publish(signalDocumentOf("opt-in", true));
  isAlwaysFresh = true;
  launch(PrivacySignal{});
  sdk->removeConsents();
  device.settle();
  EXPECT_EQ(sdk->explain(1).get().cause, DecisionCause::signal);
  EXPECT_TRUE(sdk->isBannerDue()) << "purpose 4 is to be asked about";
  sdk->screens()->shown(ScreenKind::banner).reset();
  EXPECT_TRUE(sdk->screens()->recordDefaults({}));
  device.advance(std::chrono::seconds(1));
  EXPECT_EQ(sdk->explainBanner().reason, BannerReason::answered) << "what a signal decided is no earlier answer";
}

TEST_F(PrivacySignalTest, IsNamedInUploadsAndNeverGoesOutAsTheUsersWord) {
  device.publish(signalDocumentOf("opt-out"));
  launch(PrivacySignal{});
  sdk->acceptOrReject(true).wait();
  device.settle();
  const auto before = device.uploads().size();
  sdk->removeConsents();
  device.setPrivacySignal(true);
  device.settle();
  sdk->set({.purposeId = 4}, granted);
  device.advance(std::chrono::seconds(2));
  EXPECT_TRUE(sdk->uploadPendingConsents().get());
  std::string explicitly;
  std::string implicitly;
  const auto uploads = device.uploads();
  for (std::size_t i = before; i < uploads.size(); ++i) {
    const auto body = boost::json::parse(uploads[i]).as_object();
    (body.at("implicit_consent").as_bool() ? implicitly : explicitly) += serialize(body.at("purpose_consents"));
  }
  EXPECT_NE(implicitly.find(R"("purpose_id":1,"consent_status":"declined")"), std::string::npos) << implicitly;
  EXPECT_NE(implicitly.find(R"("cause":"signal")"), std::string::npos) << implicitly;
  EXPECT_NE(explicitly.find(R"("purpose_id":4,"consent_status":"granted")"), std::string::npos) << explicitly;
  EXPECT_EQ(explicitly.find("cause"), std::string::npos) << explicitly;
  EXPECT_EQ(explicitly.find(R"("purpose_id":1,)"), std::string::npos) << explicitly;
  for (const auto& entry : sdk->getHistory().get().entries) {
    if (entry.decision.cause != DecisionCause::signal) continue;
    EXPECT_NE(entry.decision.givenType, GivenType::explicitly);
    EXPECT_EQ(entry.upload, UploadOutcome::uploaded);
  }
}

TEST_F(PrivacySignalTest, WhatTheUserSavesWithTheSignalInSightIsTheUsersOwn) {
  device.publish(signalDocumentOf("opt-out"));
  for (const bool choice : {false, true}) {
    device.setPrivacySignal(true);
    launch(PrivacySignal{});
    sdk->removeConsents();
    device.settle();
    const auto purposes = sdk->getPurposeConsents().get();
    EXPECT_TRUE(purposes.at(0).isOptedOutBySignal);
    EXPECT_EQ(purposes.at(0).consentStatus, declined);
    EXPECT_FALSE(purposes.at(3).isOptedOutBySignal);
    EXPECT_TRUE(sdk->screens()->save({{1, choice}}, {}));
    device.settle();
    EXPECT_EQ(sdk->explain(1).get().cause, DecisionCause::user);
    EXPECT_EQ(sdk->isAllowed(1), choice);
    device.setPrivacySignal(false);
    device.settle();
    EXPECT_EQ(sdk->isAllowed(1), choice);
  }
}

// Neither what is saved as it was shown, nor what a signal decided that has just ended.
TEST_F(PrivacySignalTest, WhatIsSavedUnchangedIsTheUsersOwnToo) {
  device.publish(signalDocumentOf("opt-out"));
  launch(PrivacySignal{});
  EXPECT_TRUE(sdk->screens()->recordDefaults({}));
  EXPECT_TRUE(sdk->screens()->save({{1, true}}, {}));
  device.setPrivacySignal(true);
  device.settle();
  EXPECT_TRUE(sdk->isAllowed(1));

  sdk->removeConsents();
  device.settle();
  EXPECT_FALSE(sdk->isAllowed(1));
  device.setPrivacySignal(false);
  EXPECT_TRUE(sdk->screens()->save({{1, false}}, {})) << "before the end of the signal is recorded";
  device.settle();
  EXPECT_EQ(sdk->get(1), declined);
  EXPECT_FALSE(sdk->isAllowed(1)) << "the refusal does not end with the signal";
}

TEST_F(PrivacySignalTest, AnalyticsIsToldOfNoConsentThatASignalRefuses) {
  auto document = boost::json::parse(signalDocumentOf("opt-out")).as_object();
  document["privacy_signal_purposes"] = {1, 9};  // 9 is not listed, so nothing is recorded about it
  document["is_gcm_enabled"] = true;
  document["gcm_config"] = {{"default_mapping", {{"analytics_storage", {1}}, {"ad_storage", {9}}}}};
  device.publish(boost::json::serialize(document));
  launch(PrivacySignal{});
  for (const Given signal : {Given::byDevice, Given::byApplication}) {
    EXPECT_EQ(device.consentMode().at("analytics_storage"), "granted");
    EXPECT_EQ(device.consentMode().at("ad_storage"), "granted");
    device.setOnline(false);  // nothing is loaded that could bring the news
    give(signal);
    EXPECT_EQ(device.consentMode().at("analytics_storage"), "denied");
    EXPECT_EQ(device.consentMode().at("ad_storage"), "denied");
    device.setOnline(true);
    takeBack(signal);
  }

  device.setOnline(false);
  ConsentSDKOptions inAnotherLanguage = device.options();
  inAnotherLanguage.languageCode = "de";  // drops the document, and there is no other
  inAnotherLanguage.privacySignal.emplace();
  sdk->setup(inAnotherLanguage);
  device.settle();
  EXPECT_EQ(device.consentMode().at("analytics_storage"), "granted");
  device.setPrivacySignal(true);
  device.settle();
  EXPECT_EQ(device.consentMode().at("analytics_storage"), "denied");
  sdk->set({.purposeId = 1}, granted);
  device.settle();
  EXPECT_EQ(device.consentMode().at("analytics_storage"), "granted");
  sdk->set({.purposeId = 1}, declined);
  device.settle();
  EXPECT_EQ(device.consentMode().at("analytics_storage"), "denied");
}

TEST_F(PrivacySignalTest, WhatItDecidesWithTheFirstConfigurationIsUploaded) {
  device.publish(signalDocumentOf("opt-out"));
  device.setPrivacySignal(true);
  launch(PrivacySignal{});
  device.advance(std::chrono::seconds(2));
  ASSERT_EQ(device.uploads().size(), 1u);
  EXPECT_NE(device.uploads().front().find(R"("cause":"signal")"), std::string::npos);
}

}  // namespace
}  // namespace quillon::test
