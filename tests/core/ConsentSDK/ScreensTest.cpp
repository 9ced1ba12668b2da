#include <gtest/gtest.h>

#include "platform/memory/RecordingPresenter.h"
#include "tests/support/Contains.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

TEST(Screens, AreShownOnTheMainQueueAndTheBannerOnce) {
  const auto presenter = std::make_shared<RecordingPresenter>();
  World world;
  world.amend = [&](Platform& platform) { platform.screens = presenter; };
  world.start();
  world.sdk->presentBanner();
  world.sdk->presentBanner();
  world.settle();
  world.sdk->presentPreferenceCenter();
  world.sdk->openLink("https://example.org/");
  world.settle();
  EXPECT_EQ(presenter->take(), (std::vector<std::string>{"banner", "preferences", "link https://example.org/"}));
}

TEST(Screens, WithoutAUserInterfaceConsumeNothingAndTellWhatIsMissing) {
  for (const auto& [areLinked, mistake] : {std::pair(false, "[ERROR]No user interface is linked, nothing is shown"),
                                           std::pair(true, "[ERROR]A user interface is linked but not configured")}) {
    World world;
    world.amend = [&](Platform& platform) { platform.areScreensLinked = areLinked; };
    world.start();
    world.sdk->presentBanner();
    world.sdk->settled().wait();
    EXPECT_TRUE(contains(world.log(), mistake));
    EXPECT_TRUE(world.sdk->isBannerDue());
  }
}

}  // namespace
}  // namespace quillon::test
