#include <gtest/gtest.h>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "quillon/SDKLogger.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

struct Logger : testing::Test {
  Logger() {
    world.restart();
    world.store(key::configurationVersion, std::int64_t{7});
    world.store(key::subjectId, std::string("ME"));
    world.advance(std::chrono::milliseconds(45));
  }

  std::vector<std::string> blocks(LogLevel threshold, LogLevel level,
                                  std::string_view file = "core/Purposes/PurposeManager.src") {
    const auto before = world.console->blocks().size();
    world.sdk->logger().setLogLevel(threshold);
    world.sdk->logger().log("Message", level, "checkPurposes()", file, 42);
    auto all = world.console->blocks();
    return {all.begin() + static_cast<std::ptrdiff_t>(before), all.end()};
  }

  World world;
};

TEST_F(Logger, WritesTheExactBlockOfItsThreshold) {
  using Blocks = std::vector<std::string>;
  EXPECT_EQ(blocks(LogLevel::debug, LogLevel::info),
            (Blocks{"SDK Version: 1.2.3",
                    "Subject Identity: ME\nConfiguration Version: 7\n"
                    "2023-11-14 22:13:20.045 [INFO] [PurposeManager.src:42] checkPurposes() - Message"}));
  EXPECT_EQ(blocks(LogLevel::info, LogLevel::info),
            Blocks{"Configuration Version: 7\n2023-11-14 22:13:20.045 [INFO]Message"});
  EXPECT_EQ(blocks(LogLevel::warning, LogLevel::error),
            Blocks{"Configuration Version: 7\n2023-11-14 22:13:20.045 [ERROR]Message"});
  world.store(key::isATTEnabled, true);
  EXPECT_EQ(blocks(LogLevel::debug, LogLevel::warning, "NoSlash.src"),
            (Blocks{"SDK Version: 1.2.3", "ATT AD ID: AD-ID",
                    "Subject Identity: ME\nConfiguration Version: 7\n"
                    "2023-11-14 22:13:20.045 [WARNING] [NoSlash.src:42] checkPurposes() - Message"}));
}

TEST_F(Logger, PassesWhatIsAtOrAboveItsThreshold) {
  constexpr std::array levels{LogLevel::debug, LogLevel::info, LogLevel::warning, LogLevel::error};
  for (const LogLevel threshold : levels) {
    for (const LogLevel level : levels) {
      EXPECT_EQ(blocks(threshold, level).empty(), level < threshold) << rawValue(threshold) << rawValue(level);
    }
  }
}

}  // namespace
}  // namespace quillon::test
