#include <gtest/gtest.h>

#include "tests/support/OnDevice.h"

namespace quillon::test {
namespace {

using namespace std::chrono_literals;
using quillon::testing::Request;
using quillon::testing::Response;

// Two banners: California's is opt-out, every other one opt-in.
constexpr const char* configuration = R"({
  "version": 3,
  "purposes": [{"purpose_id": 1, "purpose_name": {"en": "Statistics"}}],
  "permissions": [{"permission_id": "NSCameraUsageDescription"}],
  "banner_config": {
    "categories": {"strict": {"compliance_type": "opt-in"}, "lax": {"compliance_type": "opt-out"}},
    "names_map": {}, "locations": {"default": "strict", "US#CA": "lax"}
  },
  "is_gcm_enabled": true, "gcm_config": {"default_mapping": {"analytics_storage": [1]}}
})";

struct DeviceTest : ::testing::Test, OnDevice {
  DeviceTest() { device.publish(configuration); }

  bool accept() {
    bool isStored = false;
    sdk->acceptOrReject(true, [&](bool stored) { isStored = stored; });
    device.settle();
    return isStored;
  }
};

TEST_F(DeviceTest, LocationAndLanguageReachTheServersAndChooseTheBanner) {
  device.setLocation("US", "CA");
  device.setLanguages({"de-AT"});
  launch();
  EXPECT_EQ(sdk->getBannerConfig().get().value().complianceType, ComplianceType::optOut);
  EXPECT_EQ(asked("/config_de.json"), 1u);
}

TEST_F(DeviceTest, ScriptedFaultsComeBeforeTheDevicesOwnAnswersAndAFullDiskKeepsNothing) {
  int left = 2;
  device.answer([&](const Request& request) -> std::optional<Response> {
    if (request.method != "POST" || left-- <= 0) return std::nullopt;
    return Response{.status = 503};
  });
  launch();
  device.setDiskFull(true);
  EXPECT_FALSE(accept());
  EXPECT_NE(device.log().find("the disk is full"), std::string::npos);
  device.setDiskFull(false);
  EXPECT_TRUE(accept());
  EXPECT_EQ(device.uploads().size(), 1u);
  for (int check = 0; check < 4; ++check) device.advance(30min);
  EXPECT_EQ(device.uploads().size(), 3u) << "two that failed, one that was accepted";
}

TEST_F(DeviceTest, TimersFireAtTheirTimeAndCallbacksWithinSettle) {
  launch();
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
  const VantariKey camera(VantariKey::cameraUsageDescription);
  launch();
  for (const auto status : {ConsentStatus::granted, ConsentStatus::declined, ConsentStatus::notDetermined}) {
    EXPECT_TRUE(device.setPermission(camera, status));
    EXPECT_EQ(sdk->checkConsentBy(camera).get(), status);
  }
  EXPECT_FALSE(device.setPermission(camera, ConsentStatus::withDrawn));
}

}  // namespace
}  // namespace quillon::test
