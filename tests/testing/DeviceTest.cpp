#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

#include "quillon/Testing.h"

namespace quillon::testing {
namespace {

using namespace std::chrono_literals;

// Two banners: California's is opt-out, every other one opt-in.
constexpr const char* configuration = R"({
  "version": 3,
  "purposes": [{"purpose_id": 1, "purpose_name": {"en": "Statistics"}}],
  "permissions": [{"permission_id": "NSCameraUsageDescription"}],
  "banner_config": {
    "categories": {"strict": {"compliance_type": "opt-in", "banner_reappearance_time": "12 month"},
                   "lax": {"compliance_type": "opt-out", "banner_reappearance_time": "12 month"}},
    "names_map": {}, "locations": {"default": "strict", "US#CA": "lax"}
  },
  "is_gcm_enabled": true,
  "gcm_config": {"default_mapping": {"analytics_storage": [1], "ad_storage": [], "ad_user_data": [],
                                     "ad_personalization": []}}
})";

class DeviceTest : public ::testing::Test {
 protected:
  void start() {
    sdk.reset();
    sdk = device.launch();
    sdk->setup(device.options());
    device.settle();
  }
  bool accept() {
    bool isStored = false;
    sdk->acceptOrReject(true, [&](bool stored) { isStored = stored; });
    device.settle();
    return isStored;
  }
  Device device;
  std::unique_ptr<ConsentSDK> sdk;
};

TEST_F(DeviceTest, LocationAndLanguageReachTheServersAndChooseTheBanner) {
  device.publish(configuration);
  device.setLocation("US", "CA");
  device.setLanguages({"de-AT"});
  start();
  const auto banner = sdk->getBannerConfig().get();
  ASSERT_TRUE(banner);
  EXPECT_EQ(banner->complianceType, ComplianceType::optOut);
  EXPECT_TRUE(std::ranges::any_of(device.requests(),
                                  [](const Request& request) { return request.url.ends_with("/config_de.json"); }));
}

TEST_F(DeviceTest, WithoutAConfigurationTheSDKIsUnavailableUntilOneIsPublished) {
  start();
  EXPECT_EQ(sdk->getStatus(), SDKStatus::unavailable);
  device.publish(configuration);
  start();
  EXPECT_EQ(sdk->getStatus(), SDKStatus::ready);
}

TEST_F(DeviceTest, ScriptedFaultsComeBeforeTheDevicesOwnAnswers) {
  device.publish(configuration);
  int left = 2;
  device.answer([&](const Request& request) -> std::optional<Response> {
    if (request.method != "POST" || left-- <= 0) return std::nullopt;
    return Response{.status = 503};
  });
  start();
  EXPECT_TRUE(accept());
  EXPECT_EQ(device.uploads().size(), 1u);
  for (int check = 0; check < 4; ++check) device.advance(30min);
  EXPECT_EQ(device.uploads().size(), 3u) << "two that failed, one that was accepted";
}

TEST_F(DeviceTest, TimersFireAtTheirTimeAndCallbacksWithinSettle) {
  device.publish(configuration);
  start();
  ASSERT_TRUE(accept());
  const auto uploads = device.uploads().size();
  const auto begin = device.now();
  ASSERT_TRUE(sdk->set({.purposeId = 1}, ConsentStatus::declined));
  device.advance(999ms);
  EXPECT_EQ(device.uploads().size(), uploads);
  device.advance(1ms);
  EXPECT_EQ(device.uploads().size(), uploads + 1);
  EXPECT_EQ(device.now() - begin, 1s);
  EXPECT_EQ(device.consentMode().at("analytics_storage"), "denied");
}

TEST_F(DeviceTest, PermissionsAreSetInTheWordsOfTheSDK) {
  device.publish(configuration);
  start();
  for (const auto status : {ConsentStatus::granted, ConsentStatus::declined, ConsentStatus::notDetermined}) {
    EXPECT_TRUE(device.setPermission(VantariKey::cameraUsageDescription, status));
    EXPECT_EQ(sdk->checkConsentBy(VantariKey::cameraUsageDescription).get(), status);
  }
  EXPECT_FALSE(device.setPermission(VantariKey::cameraUsageDescription, ConsentStatus::withDrawn));
}

TEST_F(DeviceTest, FullDiskKeepsNothingAndAnswersSo) {
  device.publish(configuration);
  start();
  device.setDiskFull(true);
  EXPECT_FALSE(accept());
  EXPECT_NE(device.log().find("the disk is full"), std::string::npos);
  device.setDiskFull(false);
  EXPECT_TRUE(accept());
}

}  // namespace
}  // namespace quillon::testing
