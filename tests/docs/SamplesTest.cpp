// What the samples of the pages say, they do: the extracted files are compiled into this program and run.
#include <gtest/gtest.h>

#include <atomic>
#include <cassert>
#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/Platform.h"
#include "platform/memory/ManualExecutors.h"
#include "platform/parts/NetworkReporter.h"
#include "quillon/ConsentSDK.h"
#include "quillon/LinuxPlatform.h"
#include "quillon/Testing.h"

// Their own includes are above; what is left of each is a namespace's content.
namespace howTo {
#include "docs-how-to-1.cpp"
#include "docs-how-to-2.cpp"
#include "docs-how-to-3.cpp"
#include "docs-how-to-4.cpp"
}  // namespace howTo
#include "docs-porting-1.cpp"
#include "docs-testing-1.cpp"
#include "docs-testing-2.cpp"

// The README's sample is a file of this program, with the function main that the linker calls by that name.
extern "C" int __real_main();
extern "C" int __wrap_main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}

namespace {

bool isSystemOnline = true;
bool isWatched = false;
std::function<void(bool online)> tellSystemStatus;

}  // namespace

bool system_is_online() {
  return isSystemOnline;
}

void* system_watch_online(void (*changed)(bool online, void* context), void* context) {
  isWatched = true;
  tellSystemStatus = [=](bool online) { changed(online, context); };
  return &isWatched;
}

void system_unwatch(void* watch) {
  *static_cast<bool*>(watch) = false;
}

namespace quillon::test {
namespace {

constexpr const char* configuration = R"({
  "version": 1,
  "purposes": [{"purpose_id": 2, "purpose_name": {"en": "Audience measurement"}}],
  "permissions": [{"permission_id": "NSMicrophoneUsageDescription"}, {"permission_id": "NSCameraUsageDescription"}],
  "banner_config": {
    "categories": {"all": {"compliance_type": "opt-in", "banner_reappearance_time": "12 month",
                           "banner_heading": {"en": "Your choice"}, "banner_text": {"en": "May we measure?"}}},
    "names_map": {}, "locations": {"default": "all"}
  },
  "is_gcm_enabled": true,
  "gcm_config": {"default_mapping": {"analytics_storage": [2], "ad_storage": [], "ad_user_data": [],
                                     "ad_personalization": []}}
})";

TEST(ReadmeSample, MeasuresNothingUnaskedAndFindsTheBannerDueOnceThereIsAConfiguration) {
  ASSERT_TRUE(beforeTheFirstTest());
  (void)ConsentSDK::shared();  // which no configure() changes any more
  device().publish(configuration);
  ::testing::internal::CaptureStdout();
  __real_main();
  device().settle();
  const std::string said = ::testing::internal::GetCapturedStdout();
  EXPECT_NE(said.find("measuring is not allowed\n"), std::string::npos) << "nobody was asked yet";
  EXPECT_NE(said.find("time to ask the user\n"), std::string::npos);
}

TEST(TestingSample, ItsAssertionsHold) {
  theBannerComesAgainAfterAYear(configuration);
}

TEST(HowToSample, ABannerOfTheApplicationsOwnAsksOnceAndKeepsTheAnswer) {
  quillon::testing::Device device;
  device.publish(configuration);
  const auto sdk = device.launch();
  sdk->setup(device.options());
  device.settle();
  std::vector<std::string> asked;
  const auto ask = [&](const std::string& heading, const std::string& text, const std::function<void(bool)>& answer) {
    asked.push_back(heading + ": " + text);
    answer(true);
  };
  for (int start = 0; start < 2; ++start) {
    howTo::askWhenDue(*sdk, "de", ask);
    device.settle();
  }
  EXPECT_EQ(asked, std::vector<std::string>{"Your choice: May we measure?"});
  EXPECT_EQ(sdk->get(2), ConsentStatus::granted);
  howTo::trackPageView(*sdk);
}

TEST(HowToSample, TheDashboardAnswersForTheMicrophoneAndTheDeviceForTheRest) {
  quillon::testing::Device device;
  device.setPermission(VantariKey::microphoneUsageDescription, ConsentStatus::declined);
  device.setPermission(VantariKey::cameraUsageDescription, ConsentStatus::declined);
  Platform platform;
  device.services()(platform);
  howTo::DashboardMicrophone sources(platform.permissions);
  const auto deviceSays = platform.permissions->platformValue(VantariKey::cameraUsageDescription);
  EXPECT_EQ(sources.platformValue(VantariKey::cameraUsageDescription), deviceSays);
  EXPECT_EQ(sources.platformValue(VantariKey::microphoneUsageDescription), 2);
  sources.switchedOn = true;
  EXPECT_EQ(sources.platformValue(VantariKey::microphoneUsageDescription), 3);
  EXPECT_EQ(sources.platformValue(VantariKey::cameraUsageDescription), deviceSays);
}

TEST(PortingSample, TellsTheStatusAndItsChangesUntilItIsDropped) {
  ManualExecutors executors;
  std::vector<NetworkStatus> heard;
  isSystemOnline = false;
  auto subscription =
      SystemNetworkPath().start(executors.serial("path"), [&](NetworkStatus status) { heard.push_back(status); });
  tellSystemStatus(true);
  executors.runUntilIdle();
  EXPECT_EQ(heard, (std::vector{NetworkStatus::unsatisfied, NetworkStatus::satisfied}));
  tellSystemStatus(false);
  subscription.reset();
  executors.runUntilIdle();
  EXPECT_EQ(heard.size(), 2u);
  EXPECT_FALSE(isWatched);
}

}  // namespace
}  // namespace quillon::test
