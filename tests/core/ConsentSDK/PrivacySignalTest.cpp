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

// The source of the signal, and whether the application honours it.
enum class Given { no, byDevice, byApplication, byDeviceUnheeded };

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
  DecisionCause causeOf(std::int64_t id) const { return sdk->explain(id).get().cause.value(); }
};

enum class Decided { not_, grantedByUser, declinedByUser, byDefault };

struct Row {
  const char* type;
  Decided decided;
  const char* without;  // what is allowed without a signal
  const char* with;
};

// All combinations of signal, compliance type and stored decision. Purpose 3 needs the device's authorization in all of
// them, and what is notice-only allows like opt-out.
constexpr Row rule[] = {
    {"opt-in", Decided::not_, "2", "2"},
    {"opt-in", Decided::byDefault, "2", "2"},
    {"opt-in", Decided::grantedByUser, "12", "12"},
    {"opt-in", Decided::declinedByUser, "2", "2"},
    {"opt-out", Decided::not_, "124", "24"},
    {"opt-out", Decided::byDefault, "124", "24"},
    {"opt-out", Decided::grantedByUser, "124", "124"},
    {"opt-out", Decided::declinedByUser, "24", "24"},
};

TEST_F(PrivacySignalTest, CountsAsAnOptOutUnlessTheUserHasAnsweredAndEndsWithTheSignal) {
  for (const Row& row : rule) {
    for (const Given signal : {Given::no, Given::byDevice, Given::byApplication, Given::byDeviceUnheeded}) {
      SCOPED_TRACE(::testing::Message() << row.type << " " << static_cast<int>(row.decided) << " "
                                        << static_cast<int>(signal));
      turn(false);
      device.publish(signalDocumentOf(row.type));
      launchFresh(signal == Given::byDeviceUnheeded ? std::nullopt : std::optional(PrivacySignal{}));
      sdk->removeConsents();
      device.settle();
      const bool isUsers = row.decided == Decided::grantedByUser || row.decided == Decided::declinedByUser;
      if (isUsers) sdk->set({.purposeId = 1}, row.decided == Decided::grantedByUser ? granted : declined);
      EXPECT_TRUE(row.decided != Decided::byDefault || sdk->screens()->recordDefaults({}));
      turn(signal == Given::byDevice || signal == Given::byDeviceUnheeded);
      const auto again = [&](bool isGiven) {
        setup([&](ConsentSDKOptions& options) {
          options.privacySignal = PrivacySignal{.isGiven = isGiven};
          options.testingMode = true;
        });
        device.settle();
      };
      if (signal == Given::byApplication) again(true);
      const bool counts = signal == Given::byDevice || signal == Given::byApplication;
      EXPECT_EQ(allowed(), counts ? row.with : row.without);
      const auto why = sdk->explain(1).get();
      EXPECT_EQ(why.cause == DecisionCause::signal, counts && !isUsers) << why.text;
      EXPECT_EQ(why.status, sdk->get(1));
      if (why.cause == DecisionCause::signal) {
        EXPECT_TRUE(why.text.starts_with("A privacy signal is honoured: declined on ")) << why.text;
      }
      turn(false);
      if (signal == Given::byApplication) again(false);
      EXPECT_EQ(allowed(), row.without) << "it ends with the signal";
      EXPECT_NE(causeOf(1), DecisionCause::signal);
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
