#include <gtest/gtest.h>

#include <boost/json/serialize.hpp>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "platform/memory/RecordingPresenter.h"
#include "tests/support/Contains.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

struct Screens : ::testing::Test {
  Screens() {
    world.amend = [this](Platform& platform) {
      platform.screens = presenter;
      platform.areScreensLinked = areLinked;
    };
  }
  std::vector<std::string> shown() {
    world.settle();
    return presenter->take();
  }
  std::shared_ptr<RecordingPresenter> presenter = std::make_shared<RecordingPresenter>();
  bool areLinked = true;
  World world;
};

TEST_F(Screens, AreShownOnTheMainQueueAndTheBannerOnce) {
  world.start();
  world.sdk->presentBanner();
  world.sdk->presentBanner();
  EXPECT_EQ(shown(), std::vector<std::string>{"banner"});
  world.sdk->presentPreferenceCenter();
  world.sdk->openLink("https://example.org/");
  EXPECT_EQ(shown(), (std::vector<std::string>{"preferences", "link https://example.org/"}));
}

TEST_F(Screens, WithoutAUserInterfaceConsumeNothingAndTellWhatIsMissing) {
  presenter = nullptr;
  for (const auto& [linked, mistake] : {std::pair(false, "[ERROR]No user interface is linked, nothing is shown"),
                                        std::pair(true, "[ERROR]A user interface is linked but not configured")}) {
    areLinked = linked;
    world.restart();
    world.start();
    world.sdk->presentBanner();
    world.sdk->openLink("https://example.org/");
    world.sdk->settled().wait();
    EXPECT_TRUE(contains(world.log(), mistake));
  }
  EXPECT_TRUE(world.sdk->isBannerDue());
}

TEST_F(Screens, SettingsPromptIsOfferedByTheConfigurationUntilItWasClosed) {
  auto document = validConfiguration();
  document["is_sp_enabled"] = true;
  document["settings_prompt"] = {
      {"permissions", {{"NSCameraUsageDescription", true}, {"NSContactsUsageDescription", false}}}};
  const auto publish = [&] {
    world.server.serve(document);
    world.startLater();
  };
  world.start();
  publish();
  world.sdk->presentSettingPrompt(VantariKey::cameraUsageDescription);
  EXPECT_TRUE(shown().empty()) << "the banner does not allow it";
  bannerOf(document)["should_show_settings_prompt"] = true;
  publish();
  world.sdk->presentSettingPrompt(VantariKey::contactsUsageDescription);
  world.sdk->presentSettingPrompt(VantariKey::microphoneUsageDescription);
  world.sdk->presentSettingPrompt(VantariKey::cameraUsageDescription);
  EXPECT_EQ(shown(), std::vector<std::string>{"prompt NSCameraUsageDescription"});
  world.store(key::hasShownSettingsPrompt, true);
  world.sdk->presentSettingPrompt(VantariKey::cameraUsageDescription);
  EXPECT_TRUE(shown().empty());
  EXPECT_EQ(world.sdk->getPermissionConsents().get().at(0).isSettingsPromptEnabled, true);
  EXPECT_TRUE(world.sdk->getSettingsPrompt().get());
}

}  // namespace
}  // namespace quillon::test
