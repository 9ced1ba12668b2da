#include <gtest/gtest.h>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

TEST(Options, NormaliseWhatTheHostGives) {
  for (const auto& [given, kept] : {std::pair{-5, 60}, {0, 60}, {60, 60}, {61, 61}, {7200, 7200}}) {
    EXPECT_EQ(ConsentsCheckInterval(given).count(), kept) << given;
  }
  EXPECT_EQ(ConsentsCheckInterval(std::chrono::minutes(30)).count(), 1800);
  EXPECT_EQ(ConsentsCheckInterval(std::chrono::milliseconds(90'500)).count(), 90);
  constexpr std::int64_t year = 31'536'000;
  EXPECT_EQ(ConsentsCheckInterval(std::chrono::seconds::max()).count(), year) << "as good as never";
  EXPECT_EQ(ConsentsCheckInterval(std::chrono::hours::min()).count(), 60);
}

TEST(Setup, ResetsTheCacheByTheRules) {
  struct Case {
    std::string lastMode;
    bool testingMode;
    std::string cachedLanguage;
    bool resets;
  };
  for (const Case& example :
       {Case{"live", false, "en", false}, Case{"live", false, "de", true}, Case{"draft", true, "en", true},
        Case{"draft", false, "en", true}, Case{"nonsense", false, "en", false}}) {
    SCOPED_TRACE(example.lastMode + " " + example.cachedLanguage);
    World world;
    world.server.serve(R"({"name":"first"})", "\"tag\"");
    world.start();
    world.store(key::lastModeUsed, example.lastMode);
    world.store(key::languageCode, example.cachedLanguage);
    ASSERT_TRUE(std::filesystem::exists(world.file()));
    world.server.onConfiguration(json("{}", 500));

    world.restart();
    ConsentSDKOptions options = world.options();
    options.testingMode = example.testingMode;
    options.mode = example.testingMode ? Mode::draft : Mode::live;
    world.start(options);
    EXPECT_EQ(std::filesystem::exists(world.file()), !example.resets);
    EXPECT_EQ(world.text(key::etag).has_value(), !example.resets);
    EXPECT_EQ(world.sdk->getStatus(), example.resets ? SDKStatus::unavailable : SDKStatus::ready);
    EXPECT_EQ(world.text(key::lastModeUsed), example.testingMode ? "draft" : "live");
  }
}

TEST(Setup, KeepsOneSubjectUntilItIsRemoved) {
  World world;
  ConsentSDKOptions options = world.options();
  options.subjectId.reset();
  options.logLevel = LogLevel::debug;
  world.start(options);
  const auto subject = world.text(key::subjectId).value();
  EXPECT_EQ(subject.size(), 36u);
  world.restart();
  world.start(options);
  EXPECT_EQ(world.text(key::subjectId), subject);

  world.sdk->removeConsents();
  world.sdk->settled().wait();
  EXPECT_NE(world.text(key::subjectId), subject);
  EXPECT_TRUE(std::filesystem::exists(world.file()));
  world.start(options);
  EXPECT_NE(world.text(key::subjectId), subject);

  options.subjectId = "given by the host";
  world.start(options);
  EXPECT_EQ(world.text(key::subjectId), "given by the host");
}

TEST(Setup, AnswersNothingPresentAtEverySetUp) {
  World world;
  world.start();
  EXPECT_TRUE(world.sdk->isBannerDue());
  EXPECT_TRUE(world.stored().boolean(key::isBannerPresent));
  world.start();
  EXPECT_FALSE(world.stored().boolean(key::isBannerPresent));
}

TEST(Readiness, ReportsEachDistinctStatusOnceToTheLastObserver) {
  using enum SDKStatus;
  using Reports = std::vector<SDKStatus>;
  Reports first, second, third;  // on the main queue
  const auto into = [](Reports& reports) { return [&](SDKStatus status) { reports.push_back(status); }; };
  World world;
  world.restart();
  world.sdk->isReady(into(first));
  world.drainMainQueue();
  world.sdk->isReady(into(second));
  world.start();
  world.start();  // from the cache: still ready, nothing to report
  world.settle();
  EXPECT_EQ(second, (Reports{unavailable, fetching, ready}));
  EXPECT_EQ(first, Reports{unavailable}) << "a replaced observer hears nothing more";
  world.server.onConfiguration(json("{}", 500));
  world.startLater();  // an old cache is revalidated and then used
  world.settle();
  EXPECT_EQ(second, (Reports{unavailable, fetching, ready, fetching, ready}));

  world.sdk->removeListeners();
  world.startLater();
  world.sdk->isReady(into(third));
  world.settle();
  EXPECT_EQ(third, Reports{ready}) << "the first report always comes";
  EXPECT_EQ(second.size(), 5u);
  world.sdk->removeListeners();
}

}  // namespace
}  // namespace quillon::test
