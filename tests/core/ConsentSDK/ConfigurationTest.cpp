// Which document serves, from which address, and for how long.
#include <gtest/gtest.h>

#include <boost/json/serialize.hpp>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "platform/memory/FixedHostApplication.h"
#include "tests/support/Contains.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

using namespace std::chrono_literals;

std::string versioned(int version) {
  return boost::json::serialize(configurationWith({{"version", version}}));
}

struct Configuration : ::testing::Test {
  std::size_t asked(std::string_view path = configurationPath) const { return world.server.seen(path).size(); }
  std::int64_t version() { return world.stored().integer(key::configurationVersion, 0); }

  World world;
  ConsentSDKOptions options = world.options();
};

TEST_F(Configuration, IsFetchedOnceAnHour) {
  for (const auto& [later, requests] : {std::pair(0s, 1u), {3600s, 1u}, {1s, 2u}}) {
    world.advance(later);
    world.start();
    EXPECT_EQ(asked(), requests) << "3600 seconds old is fresh, 3601 seconds old is not";
    EXPECT_EQ(world.sdk->getStatus(), SDKStatus::ready);
  }
  EXPECT_EQ(world.server.seen().front().path, "/consent/mobile_banner/t1/a1/live/config_en.json");
}

TEST_F(Configuration, ThatIsBadIsExplainedAndLosesNothing) {
  world.start();
  const std::pair<ConsentServer::Handler, std::string> answers[] = {
      {json("oh\nno", 500), "  Status Code: 500\n  Headers: ["},
      {json("<html>Sign in</html>"), "Data: { 20 bytes }"},
      {json(R"({"x-auth-token" : "secret-token", "version": "x"})"),
       "Failed to Decode MainConfiguration : version: expected an integer"},
  };
  for (const auto& [answer, explanation] : answers) {
    SCOPED_TRACE(explanation);
    const auto before = asked();
    world.server.onConfiguration(answer);
    world.startLater();
    EXPECT_EQ(world.sdk->getStatus(), SDKStatus::ready) << "the cached copy serves";
    EXPECT_EQ(asked(), before + 1) << "no retry";
    EXPECT_TRUE(contains(world.log(), explanation));
    EXPECT_FALSE(contains(world.log(), "secret-token"));
  }
  std::filesystem::remove(world.file());
  world.start();
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::unavailable);
  EXPECT_FALSE(world.sdk->acceptOrReject(true).get()) << "an answer to no question";
}

TEST_F(Configuration, UnchangedCostsNoBody) {
  world.server.serve(versioned(5), "\"v5\"");
  world.start();
  world.startLater();
  EXPECT_TRUE(contains(world.log(), "[INFO]CDN Configuration is up to date"));
  EXPECT_EQ(world.server.seen(configurationPath).back().headers.find("If-None-Match")->second, "\"v5\"");
  EXPECT_EQ(asked(), 2u);
}

TEST_F(Configuration, BundledServesUntilTheFirstDownloadAndIsCheckedLikeOne) {
  FixedHostApplication::Texts resources{{"consent.json", versioned(5)}, {"consent_de.json", R"({"version":"8"})"}};
  world.amend = [&](Platform& platform) {
    platform.host = std::make_shared<FixedHostApplication>(FixedHostApplication::Description{.resources = resources});
  };
  world.server.onConfiguration(json("{}", 503));
  options.bundledConfiguration = "consent.json";
  for (std::size_t run = 1; run <= 2; ++run) {
    world.restart();
    world.start(options);
    EXPECT_EQ(world.sdk->getStatus(), SDKStatus::ready);
    EXPECT_EQ(world.sdk->isBannerDue(), run == 1);
    EXPECT_TRUE(world.sdk->acceptOrReject(true).get());
    EXPECT_FALSE(std::filesystem::exists(world.file())) << "it is no download";
    EXPECT_EQ(asked(), run) << "every start asks for the newest";
  }
  for (const auto& [language, name, said] :
       {std::tuple("de", "consent.json", "is ignored: consent_de.json: version: expected an integer"),
        {"en", "../absent", "[ERROR]The bundled configuration is missing: ../absent.json"}}) {
    ConsentSDKOptions bad = options;
    bad.languageCode = language;
    bad.bundledConfiguration = name;
    world.start(bad);
    EXPECT_EQ(world.sdk->getStatus(), SDKStatus::unavailable);
    EXPECT_TRUE(contains(world.log(), said));
  }
  world.server.serve(versioned(6));
  world.start(options);
  EXPECT_EQ(version(), 6);
  world.server.onConfiguration(json("{}", 503));
  std::filesystem::remove(world.file());
  world.start(options);
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::unavailable) << "the older one never comes back";
  EXPECT_EQ(version(), 6);
}

TEST_F(Configuration, LocationIsAskedForWhenItMattersAndRememberedForAnHour) {
  world.server.serve(configurationOfTwoLaws("US#CA"));
  world.server.onLocation(located(R"({"de":"US","en":"XX"})", R"({"en":"CA"})"));
  options.locationCode.reset();
  options.languageCode = "de";
  world.restart();
  world.sdk->setup(options);
  const auto banner = world.sdk->getBannerConfig(), again = world.sdk->getBannerConfig();
  banner.wait();
  again.wait();
  world.sdk->settled().wait();
  EXPECT_EQ(asked(locationPath), 1u) << "who comes second waits for the answer to the first";
  EXPECT_EQ(world.text(key::currentLocation), "US#CA");
  world.server.onLocation(json("{}", 500));
  for (const auto& [later, requests] : {std::pair(3599s, 1u), {1s, 2u}}) {
    world.advance(later);
    world.start(options);
    EXPECT_EQ(asked(locationPath), requests);
    EXPECT_EQ(world.text(key::currentComplianceType), "opt-out") << "an old answer is better than none";
  }
  options.locationCode = "DE";
  world.start(options);
  EXPECT_EQ(world.text(key::currentComplianceType), "opt-in");
  EXPECT_EQ(asked(locationPath), 2u);
}

TEST_F(Configuration, LocationThatIsLongInComingIsNotWaitedForAndAppliedOnceItIsThere) {
  world.server.serve(configurationOfTwoLaws("US"));
  const HeldAnswers held;
  world.server.onLocation(held.before(located(R"({"en":"US"})")));
  options.locationCode.reset();
  world.restart();
  world.sdk->setup(options);
  held.waitForOne();
  while (world.sdk->getStatus() != SDKStatus::ready) world.clock->advance(100ms);
  EXPECT_EQ(world.text(key::currentComplianceType), "opt-in") << "the default's";
  EXPECT_TRUE(world.stored().date(key::locationFailedTimestamp));
  held.release();
  world.sdk->settled().wait();
  EXPECT_EQ(world.text(key::currentComplianceType), "opt-out");
  EXPECT_FALSE(world.stored().date(key::locationFailedTimestamp));
  EXPECT_EQ(asked(locationPath), 1u);
}

TEST_F(Configuration, ThatIsLongInComingIsNotWaitedForBeyondWhatIsWanted) {
  world.start();
  const HeldAnswers held;
  world.server.onConfiguration(held.before(json(versioned(6))));
  world.advance(2h);
  world.restart();
  options.readyWithin = 500ms;
  world.sdk->setup(options);
  held.waitForOne();
  world.clock->advance(499ms);
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::fetching);
  while (world.sdk->getStatus() != SDKStatus::ready) world.clock->advance(1ms);
  EXPECT_EQ(version(), 5) << "the cached one serves";
  held.release();
  world.sdk->settled().wait();
  EXPECT_EQ(version(), 6);
}

TEST_F(Configuration, CacheIsResetByTheRules) {
  for (const auto& [lastMode, testingMode, cachedLanguage, resets] : {std::tuple("live", false, "en", false),
                                                                      {"live", false, "de", true},
                                                                      {"draft", true, "en", true},
                                                                      {"draft", false, "en", true},
                                                                      {"nonsense", false, "en", false}}) {
    SCOPED_TRACE(std::string(lastMode) + " " + cachedLanguage);
    World device;
    device.server.serve(R"({"name":"first"})", "\"tag\"");
    device.start();
    device.store(key::lastModeUsed, lastMode);
    device.store(key::languageCode, cachedLanguage);
    device.server.onConfiguration(json("{}", 500));
    device.restart();
    ConsentSDKOptions other = device.options();
    other.testingMode = testingMode;
    device.start(other);
    EXPECT_EQ(std::filesystem::exists(device.file()), !resets);
    EXPECT_EQ(device.text(key::etag).has_value(), !resets);
    EXPECT_EQ(device.text(key::lastModeUsed), testingMode ? "draft" : "live");
  }
}

}  // namespace
}  // namespace quillon::test
