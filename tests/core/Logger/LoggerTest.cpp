#include <gtest/gtest.h>

#include <boost/json.hpp>
#include <sstream>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Text/LogText.h"
#include "quillon/SDKLogger.h"
#include "tests/support/Contains.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

struct Logger : ::testing::Test {
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
  world.store(key::isATTEnabled, true);
  EXPECT_EQ(blocks(LogLevel::debug, LogLevel::warning, "NoSlash.src"),
            (Blocks{"SDK Version: 1.2.3", "ATT AD ID: AD-ID",
                    "Subject Identity: ME\nConfiguration Version: 7\n"
                    "2023-11-14 22:13:20.045 [WARNING] [NoSlash.src:42] checkPurposes() - Message"}));
}

TEST_F(Logger, PassesWhatIsAtOrAboveItsThreshold) {
  constexpr std::array levels{LogLevel::debug, LogLevel::info, LogLevel::warning, LogLevel::error, LogLevel::off};
  for (const LogLevel threshold : levels) {
    for (const LogLevel level : levels) {
      EXPECT_EQ(blocks(threshold, level).empty(), level < threshold || level == LogLevel::off)
          << rawValue(threshold) << rawValue(level);
    }
  }
}

TEST(LogText, HoldsNothingThatATerminalObeysOrThatMisleadsTheReader) {
  for (const auto& [value, escaped] : std::initializer_list<std::pair<std::string_view, std::string_view>>{
           {"Grüße, 你好 👋🏽", "Grüße, 你好 👋🏽"},
           {std::string_view("a\0b\x1b[2J\x7f", 8), R"(a\x00b\x1b[2J\x7f)"},
           {"one\r\n\ttwo", R"(one\r\n\ttwo)"},
           {"\u009b1m\u0085\u00a0", "\\u009b1m\\u0085\u00a0"},
           {"a\u202eb\u2066c\u200fd\u061c", R"(a\u202eb\u2066c\u200fd\u061c)"},
           {"\u2028\u2029\u2027", "\\u2028\\u2029\u2027"},
           {"\x9b\xff\xc3(\xed\xa0\x80\xf0\x9f", R"(\x9b\xff\xc3(\xed\xa0\x80\xf0\x9f)"},
       }) {
    EXPECT_EQ(escapedForLog(value), escaped);
    EXPECT_EQ(escapedForLog(escaped), escaped) << "twice is once";
  }
  EXPECT_EQ(printableForLog("one\r\n\ttwo\x1b"), "one\\r\n\ttwo\\x1b");
  EXPECT_TRUE(escapedForLog(std::string(70'000, 'x')).ends_with("xx… (70000 bytes)"));
}

// Hostile texts from every external source.
TEST(LogText, NobodyOutsideForgesALine) {
  World world;
  const auto evil = [](const std::string& origin) { return "\nforged by " + origin + "\r\x1b[2J\u009b1m\u202e\u2028"; };
  auto options = world.options();
  options.logLevel = LogLevel::debug;
  options.subjectId = evil("subject");
  world.start(options);
  world.sdk->isReady([&](SDKStatus status) {
    if (status == SDKStatus::fetching) throw std::runtime_error(evil("exception"));
  });
  world.server.onUpload(json(boost::json::serialize(boost::json::object{{"status", 1}, {"message", evil("answer")}})));
  EXPECT_TRUE(world.sdk->acceptOrReject(true).get());
  const boost::json::object evilKey{{"banner_config", {{"categories", {{evil("key"), 5}}}}}};
  for (const auto& [body, status] : {std::pair{evil("error page"), 500}, {boost::json::serialize(evilKey), 200}}) {
    world.server.onConfiguration(json(body, status));
    world.startLater(options);
    world.settle();
  }
  options.tenantId = evil("tenant");
  world.startLater(options);

  const std::string log = world.log();
  for (const char* origin : {"subject", "exception", "answer", "error page", "key", "tenant"}) {
    EXPECT_TRUE(contains(log, "forged by " + std::string(origin))) << origin << " is not logged at all";
  }
  EXPECT_EQ(log, printableForLog(log));
  std::istringstream lines(log);
  for (std::string line; std::getline(lines, line);) EXPECT_FALSE(line.starts_with("forged")) << line;
}

}  // namespace
}  // namespace quillon::test
