// The effect of privacy signals on purposes.
#include <gtest/gtest.h>

#include <boost/json/serialize.hpp>

#include "tests/support/OnDevice.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

using enum ConsentStatus;

// Purposes 1, 2 (essential) and 3 (governed by app tracking) are mapped; 4 is not.
std::string signalDocumentOf(std::string_view type, boost::json::object changes = {}) {
  changes.emplace("privacy_signal_purposes", boost::json::array{1, 2, 3});
  changes.emplace("purposes", purposesOf({1, 2, 3, 4}));
  auto document = configurationWith(changes);
  bannerOf(document)["compliance_type"] = type;
  return boost::json::serialize(document);
}

struct PrivacySignalTest : ::testing::Test, OnDevice {
  // Whatever was cached is loaded anew.
  void launchFresh(const std::optional<PrivacySignal>& signal) {
    launch([&](ConsentSDKOptions& options) {
      options.privacySignal = signal;
      options.testingMode = true;
    });
  }
  void honour(const std::optional<PrivacySignal>& signal) {
    setup([&](ConsentSDKOptions& options) { options.privacySignal = signal; });
    device.settle();
  }
  void turn(bool isOn) {
    device.setPrivacySignal(isOn);
    device.settle();
  }
};

TEST_F(PrivacySignalTest, CountsAsAnOptOutUnlessTheUserHasAnsweredAndEndsWithTheSignal) {
  // The user's answer on purpose 1, and what is allowed without the signal and with it. Purpose 3 needs the device's
  // authorization in any case.
  const std::tuple<std::optional<ConsentStatus>, const char*, const char*> rows[] = {
      {std::nullopt, "124", "24"}, {granted, "124", "124"}, {declined, "24", "24"}};
  for (const bool isDevices : {true, false}) {
    for (const auto& [answer, without, with] : rows) {
      SCOPED_TRACE(std::string(isDevices ? "the device's" : "the application's") + ", without it " + without);
      const auto give = [&](bool isGiven) {
        if (isDevices) device.setPrivacySignal(isGiven);
        honour(PrivacySignal{.isGiven = isGiven && !isDevices});
      };
      device.publish(signalDocumentOf("opt-out"));
      launch([](ConsentSDKOptions& options) { options.privacySignal.emplace(); });
      sdk->removeConsents();
      if (answer) sdk->set({.purposeId = 1}, *answer);
      give(true);
      EXPECT_EQ(allowed(), with);
      const auto why = sdk->explain(1).get();
      EXPECT_EQ(why.cause, answer ? DecisionCause::user : DecisionCause::signal);
      EXPECT_EQ(why.text.starts_with("A privacy signal is honoured: declined on "), !answer) << why.text;
      honour(std::nullopt);
      EXPECT_EQ(allowed(), without) << "the application does not honour it";
      give(false);
      EXPECT_EQ(allowed(), without) << "it ends with the signal";
    }
  }
}

TEST_F(PrivacySignalTest, HoldsFromTheSetUpOnAndWhateverElseIsNotKnown) {
  device.publish(signalDocumentOf("opt-out"));
  launch();
  EXPECT_TRUE(sdk->screens()->recordDefaults({}));
  device.settle();
  device.setPrivacySignal(true);
  device.setOnline(false);
  sdk = device.launch();
  setup([](ConsentSDKOptions& options) { options.privacySignal.emplace(); });
  EXPECT_EQ(allowed(), "24") << "before anything was loaded";
  EXPECT_EQ(sdk->get(1), declined);
  honour(PrivacySignal{.purposes = {{4}}});
  EXPECT_EQ(allowed(), "12") << "as the application maps it";
  honour(std::nullopt);
  EXPECT_EQ(allowed(), "124") << "the application honours it no longer";
  launchFresh(PrivacySignal{});
  EXPECT_EQ(sdk->getStatus(), SDKStatus::unavailable);
  EXPECT_EQ(allowed(), "") << "nobody knows what the signal stands for";
}

TEST_F(PrivacySignalTest, SettlesTheBannerAsLongAsItLeavesNothingToAsk) {
  int due = 0;
  device.publish(signalDocumentOf("opt-in", {{"purposes", purposesOf({1, 2, 3})}}));
  launch([](ConsentSDKOptions& options) { options.privacySignal.emplace(); });
  auto listening = sdk->listenToBannerDue([&](const BannerExplanation&) { ++due; });
  turn(true);
  EXPECT_EQ(sdk->explainBanner().reason, BannerReason::signal);
  EXPECT_FALSE(sdk->explainBanner().isDue || sdk->isBannerDue());
  EXPECT_EQ(due, 0);
  turn(false);
  EXPECT_EQ(due, 1);
  EXPECT_TRUE(sdk->isBannerDue());
}

}  // namespace
}  // namespace quillon::test
