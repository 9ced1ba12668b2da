#include <gtest/gtest.h>

#include <condition_variable>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

TEST(Options, NormaliseWhatTheHostGives) {
  for (const auto& [given, kept] : {std::pair{-5, 60}, {0, 60}, {60, 60}, {61, 61}, {7200, 7200}}) {
    EXPECT_EQ(ConsentsCheckInterval(given).count(), kept) << given;
  }
  const ConsentSDKOptions options{
      .appUrl = {}, .cdnUrl = {}, .tenantId = {}, .appId = {}, .testingMode = true, .languageCode = "EN"};
  EXPECT_EQ(options.languageCode->text(), "en");
  EXPECT_EQ(options.mode, Mode::draft);
  EXPECT_EQ(ConsentSDKOptions().mode, Mode::live);
  EXPECT_FALSE(sdkStatus(3));
}

struct ResetCase {
  const char* name;
  std::string lastMode;
  bool testingMode;
  std::string cachedLanguage;
  bool resets;
};

class CacheReset : public testing::TestWithParam<ResetCase> {};

TEST_P(CacheReset, FollowsTheRules) {
  World world;
  world.server.serve(R"({"name":"first"})", "\"tag\"");
  world.start();
  world.store(key::lastModeUsed, GetParam().lastMode);
  world.store(key::languageCode, GetParam().cachedLanguage);
  ASSERT_TRUE(std::filesystem::exists(world.file()));
  world.server.onConfiguration(json("{}", 500));

  world.restart();
  ConsentSDKOptions options = world.options();
  options.testingMode = GetParam().testingMode;
  options.mode = GetParam().testingMode ? Mode::draft : Mode::live;
  world.start(options);

  EXPECT_EQ(std::filesystem::exists(world.file()), !GetParam().resets);
  EXPECT_EQ(world.text(key::etag).has_value(), !GetParam().resets);
  EXPECT_EQ(world.sdk->getStatus(), GetParam().resets ? SDKStatus::unavailable : SDKStatus::ready);
  EXPECT_EQ(world.text(key::lastModeUsed), GetParam().testingMode ? "draft" : "live");
}

INSTANTIATE_TEST_SUITE_P(Setup, CacheReset,
                         testing::Values(ResetCase{"SameModeAndLanguage", "live", false, "en", false},
                                         ResetCase{"AnotherLanguage", "live", false, "de", true},
                                         ResetCase{"TestingMode", "draft", true, "en", true},
                                         ResetCase{"DraftToLive", "draft", false, "en", true},
                                         ResetCase{"UnknownLastMode", "nonsense", false, "en", false}),
                         [](const auto& test) { return test.param.name; });

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
  EXPECT_TRUE(world.snapshot()->empty()) << "also after the debug log line that names the subject";
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

// Collects reports of isReady, which come from the main queue.
class Reports {
 public:
  std::function<void(SDKStatus)> callback() {
    return [this](SDKStatus status) {
      const std::scoped_lock lock(mutex_);
      reports_.push_back(status);
      changed_.notify_all();
    };
  }
  std::vector<SDKStatus> waitFor(std::size_t count) {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, std::chrono::seconds(10), [&] { return reports_.size() >= count; });
    return reports_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<SDKStatus> reports_;
};

TEST(Readiness, ReportsEachDistinctStatusOnceToTheLastObserver) {
  using enum SDKStatus;
  Reports first, second;  // outlive the SDK
  World world;
  world.restart();
  world.sdk->isReady(first.callback());
  world.sdk->isReady(second.callback());
  world.start();
  EXPECT_EQ(second.waitFor(3), (std::vector{unavailable, fetching, ready}));
  EXPECT_EQ(first.waitFor(1), std::vector{unavailable}) << "a replaced observer hears nothing more";

  world.start();  // from the cache: still ready, nothing to report
  world.advance(std::chrono::hours(2));
  world.server.onConfiguration(json("{}", 500));
  world.start();  // an old cache is tried anew and then used
  EXPECT_EQ(second.waitFor(5), (std::vector{unavailable, fetching, ready, fetching, ready}));

  world.sdk->removeListeners();
  world.advance(std::chrono::hours(2));
  world.start();
  Reports third;
  world.sdk->isReady(third.callback());
  EXPECT_EQ(third.waitFor(1), std::vector{ready}) << "the first report always comes";
  EXPECT_EQ(second.waitFor(5).size(), 5u);
  world.sdk->removeListeners();
}

TEST(Readiness, CallbackMayThrowAndCallBackIntoTheSDK) {
  std::promise<void> called;
  World world;
  world.restart();
  world.sdk->isReady([&](SDKStatus status) {
    if (status != SDKStatus::ready) return;
    world.sdk->isReady([](SDKStatus) {});
    world.sdk->setup(world.options());
    called.set_value();
    throw std::runtime_error("host\nfault");
  });
  world.start();
  ASSERT_EQ(called.get_future().wait_for(std::chrono::seconds(10)), std::future_status::ready);
  world.sdk->settled().wait();
  world.drainMainQueue();
  EXPECT_NE(world.log().find("A callback of the host threw: host\\nfault"), std::string::npos) << world.log();
}

}  // namespace
}  // namespace quillon::test
