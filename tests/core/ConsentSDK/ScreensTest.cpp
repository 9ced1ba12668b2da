#include <gtest/gtest.h>

#include "platform/memory/RecordingPresenter.h"
#include "tests/support/Contains.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

using Strings = std::vector<std::string>;

struct Screens : ::testing::Test {
  Screens() {
    world.amend = [this](Platform& platform) {
      platform.screens = presenter;
      platform.areScreensLinked = areLinked;
    };
  }
  Strings shown() {
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
  EXPECT_EQ(shown(), Strings{"banner"});
  world.sdk->presentPreferenceCenter();
  world.sdk->openLink("https://example.org/");
  EXPECT_EQ(shown(), (Strings{"preferences", "link https://example.org/"}));
}

TEST_F(Screens, WithoutAUserInterfaceConsumeNothingAndTellWhatIsMissing) {
  presenter = nullptr;
  for (const auto& [linked, mistake] : {std::pair(false, "[ERROR]No user interface is linked, nothing is shown"),
                                        std::pair(true, "[ERROR]A user interface is linked but not configured")}) {
    areLinked = linked;
    world.restart();
    world.start();
    world.sdk->presentBanner();
    world.sdk->settled().wait();
    EXPECT_TRUE(contains(world.log(), mistake));
  }
  EXPECT_TRUE(world.sdk->isBannerDue());
}

}  // namespace
}  // namespace quillon::test
