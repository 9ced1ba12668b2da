#include <gtest/gtest.h>

#include <atomic>
#include <boost/json/serialize.hpp>
#include <map>

#include "core/Banner/BannerSelection.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "platform/memory/FailingFileSystem.h"
#include "platform/memory/FixedHostApplication.h"
#include "tests/support/Contains.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

using namespace std::chrono_literals;

std::string versioned(int version) {
  auto document = validConfiguration();
  document["version"] = version;
  return boost::json::serialize(document);
}

struct Configuration : ::testing::Test {
  std::size_t asked() const { return world.server.seen(configurationPath).size(); }
  std::int64_t version() { return world.stored().integer(key::configurationVersion, 0); }

  World world;
};

TEST_F(Configuration, IsFetchedOnceAnHour) {
  world.start();
  EXPECT_EQ(asked(), 1u);
  EXPECT_EQ(world.server.seen().front().path, "/consent/mobile_banner/t1/a1/live/config_en.json");
  world.advance(3600s);
  world.start();
  EXPECT_EQ(asked(), 1u) << "3600 seconds old is fresh";
  world.advance(1s);
  world.start();
  EXPECT_EQ(asked(), 2u) << "3601 seconds old is not";
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::ready);
}

TEST_F(Configuration, FallsBackToTheDefaultFileOnlyWhenTheLanguageIsMissing) {
  world.server.onConfiguration([](const auto& request, auto& response) {
    json(versioned(1), request.path.ends_with("/config.json") ? 200 : 404)(request, response);
  });
  ConsentSDKOptions options = world.options();
  options.languageCode = "DE";
  world.start(options);
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::ready);
  EXPECT_EQ(world.text(key::languageCode), "de");
  EXPECT_TRUE(contains(world.log(), "[INFO]CDN Configuration with de language code not found\n"));
  EXPECT_FALSE(contains(world.log(), "URLRequest")) << "a missing file is not logged in full";
}

TEST_F(Configuration, ThatIsBadIsExplainedAndLosesNothing) {
  const std::pair<ConsentServer::Handler, std::string> answers[] = {
      {json("oh\nno", 500), "  Status Code: 500\n  Headers: ["},
      {json("<html>Sign in</html>"), "Data: { 20 bytes }"},
      {json(versioned(5).substr(0, 200)), "Failed to Decode MainConfiguration : "},
      {json(R"({"x-auth-token" : "secret-token", "version": "x"})"), "version: expected an integer"},
      {json(R"({"purposes":[{"sdks":[{"sdk_id":"seven"}]}]})"), "purposes[0].sdks[0].sdk_id: expected an integer"},
  };
  for (const auto& [answer, explanation] : answers) {
    SCOPED_TRACE(explanation);
    World device;
    device.server.onConfiguration(answer);
    device.start();
    EXPECT_EQ(device.sdk->getStatus(), SDKStatus::unavailable);
    EXPECT_FALSE(std::filesystem::exists(device.file()));
    EXPECT_TRUE(contains(device.log(), explanation));
    EXPECT_EQ(device.server.seen(configurationPath).size(), 1u) << "no retry";
    EXPECT_FALSE(contains(device.log(), "secret-token"));
    EXPECT_FALSE(device.sdk->acceptOrReject(true).get()) << "an answer to no question";

    device.server.serve(versioned(5));
    device.start();
    ASSERT_EQ(device.sdk->getStatus(), SDKStatus::ready);
    ASSERT_TRUE(device.sdk->acceptOrReject(true).get());
    device.server.onConfiguration(answer);
    device.startLater();
    EXPECT_EQ(device.sdk->getStatus(), SDKStatus::ready) << "the cached copy serves";
    EXPECT_EQ(device.sdk->get(1), ConsentStatus::granted);
  }
}

TEST_F(Configuration, UnchangedCostsNoBody) {
  world.server.serve(versioned(5), "\"v5\"");
  world.start();
  EXPECT_EQ(world.text(key::etag), "\"v5\"");
  world.startLater();
  EXPECT_TRUE(contains(world.log(), "[INFO]CDN Configuration is up to date"));
  EXPECT_EQ(world.server.seen(configurationPath).back().headers.find("If-None-Match")->second, "\"v5\"");
  EXPECT_EQ(asked(), 2u);
}

// The server answers 304 for a document that is not the one on disk.
TEST_F(Configuration, UnchangedIsNotBelievedWithoutThatDocument) {
  world.server.serve(versioned(5), "\"v5\"");
  world.start();
  std::size_t before = 1;
  for (const bool isThere : {false, true}) {
    std::filesystem::remove(world.file());
    if (isThere) setFileBytes(world.file(), "{\"version\": ");
    world.restart();
    world.start();
    EXPECT_EQ(world.sdk->getStatus(), SDKStatus::ready);
    EXPECT_EQ(asked(), before += 2) << "asked once more without the tag";
    EXPECT_FALSE(contains(world.log(), "Error reading"));
  }
  world.server.serve(versioned(6), "\"v6\"");
  world.store(key::etag, "\"v6\"");  // received, but the process ended before saving
  world.startLater();
  EXPECT_EQ(version(), 6);
}

TEST_F(Configuration, TagOfAnyAnswerTakesTheOneSlot) {
  const auto tagged = [](const char* tag, std::string body) {
    return [=](const auto& request, auto& response) {
      response.set_header("etag", tag);
      json(body)(request, response);
    };
  };
  world.start();
  world.server.onUpload(tagged("\"of the upload\"", R"({"status":0,"message":"ok"})"));
  world.sdk->acceptOrReject(true).wait();
  EXPECT_EQ(world.text(key::etag), "\"of the upload\"");
  world.server.onConfiguration(tagged("\"undecodable\"", "nonsense"));
  world.startLater();
  EXPECT_EQ(world.text(key::etag), "\"undecodable\"") << "kept although the body is not";
}

TEST_F(Configuration, ReconsentAsksAgainForANewerVersionOnly) {
  world.start();
  ASSERT_TRUE(world.sdk->isBannerDue());
  world.sdk->acceptOrReject(true).wait();
  for (const int published : {5, 4, 6}) {
    world.server.serve(versioned(published));
    world.restart();
    world.startLater();
    EXPECT_EQ(world.sdk->get(1), ConsentStatus::granted) << "what was decided stands until it is answered anew";
    EXPECT_EQ(world.text(key::consentGivenType), published > 5 ? "CONSENT_NO_ACTION" : "CONSENT_EXPLICIT");
    EXPECT_EQ(world.sdk->isBannerDue(), published > 5) << published;
  }
}

TEST_F(Configuration, ThatCannotBeSavedLeavesTheEarlierFile) {
  std::atomic<bool> full = false;
  world.amend = [&](Platform& platform) {
    platform.files = std::make_shared<FailingFileSystem>(
        platform.files, [&](std::string_view change) { return full && change == "write"; });
  };
  world.start();
  const std::string earlier = fileBytes(world.file());
  full = true;
  world.server.serve(versioned(6));
  world.startLater();
  EXPECT_EQ(fileBytes(world.file()), earlier);
  EXPECT_FALSE(std::filesystem::exists(world.backup()));
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::ready);
  EXPECT_TRUE(contains(world.log(), "[ERROR]Error saving CDN: the disk is broken"));
  EXPECT_TRUE(contains(world.log(), "Backup restored to original: " + world.file().string()));
}

// A host with these bundled documents, and a server without a document.
struct Bundled : Configuration {
  Bundled() {
    world.amend = [this](Platform& platform) {
      platform.host = std::make_shared<FixedHostApplication>(FixedHostApplication::Description{.resources = resources});
    };
    world.server.onConfiguration(json("{}", 503));
    options.bundledConfiguration = "consent.json";
  }

  ConsentSDKOptions options = world.options();
  FixedHostApplication::Texts resources{{"consent.json", versioned(5)}};
};

TEST_F(Bundled, ServesUntilTheFirstDownload) {
  for (std::size_t run = 1; run <= 2; ++run) {
    world.restart();
    world.start(options);
    EXPECT_EQ(world.sdk->getStatus(), SDKStatus::ready);
    EXPECT_EQ(world.sdk->getPurposeConsents().get().size(), 3u);
    EXPECT_EQ(world.sdk->isBannerDue(), run == 1);
    EXPECT_TRUE(world.sdk->acceptOrReject(true).get());
    EXPECT_FALSE(std::filesystem::exists(world.file())) << "it is no download";
    EXPECT_EQ(asked(), run) << "every start asks for the newest";
  }
  world.server.serve(versioned(6));
  world.sdk->checkConsents().wait();
  EXPECT_EQ(version(), 6);
  EXPECT_EQ(world.stored().consentGivenType(), GivenType::noAction) << "re-consent";
  world.sdk->acceptOrReject(true).wait();
  world.server.onConfiguration(json("{}", 503));
  std::filesystem::remove(world.file());
  world.start(options);
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::unavailable) << "the older one never comes back";
  EXPECT_TRUE(world.sdk->getPurposeConsents().get().empty());
  EXPECT_EQ(version(), 6);
  EXPECT_EQ(world.stored().consentGivenType(), GivenType::explicitly);
}

TEST_F(Bundled, IsCheckedLikeADownload) {
  resources = {{"consent_de.json", versioned(7)}, {"consent.json", R"({"version":"8"})"}};
  world.start(options);
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::unavailable);
  EXPECT_TRUE(
      contains(world.log(), "The bundled configuration is ignored: consent.json: version: expected an integer"));
  options.languageCode = "de";
  world.start(options);
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::ready);
  EXPECT_EQ(version(), 7);
  options.bundledConfiguration = "../absent";
  world.start(options);
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::unavailable);
  EXPECT_TRUE(contains(world.log(), "[ERROR]The bundled configuration is missing: ../absent.json"));
}

TEST(Banner, IsSelectedByLocation) {
  MainConfiguration configuration;
  const auto named = [](std::string name) {
    BannerConfig banner;
    banner.name = std::move(name);
    return banner;
  };
  configuration.bannerConfig =
      ConsentBannerConfig{{{"eu", named("eu")}, {"us", named("us")}, {"ca", named("ca")}},
                          {{"California", "ca"}, {"Nowhere", "gone"}},
                          {{"US#CA", "California"}, {"US", "us"}, {"DE", "eu"}, {"FR", "Nowhere"}, {"default", "us"}}};
  const std::vector<std::pair<std::optional<std::string>, std::string>> cases{
      {"US#CA", "ca"}, {"US#NY", "us"}, {"DE", "eu"},        {"DE#BE", "eu"},
      {"FR", "us"},    {"JP", "us"},    {std::nullopt, "us"}};
  for (const auto& [location, expected] : cases) {
    EXPECT_EQ(selectBanner(configuration, location)->name, expected) << location.value_or("none");
  }
  configuration.bannerConfig->locations.erase("default");
  EXPECT_EQ(selectBanner(configuration, "JP")->name, "ca") << "the first one in key order";
  configuration.bannerConfig->categories["default"] = named("default");
  EXPECT_EQ(selectBanner(configuration, "JP")->name, "default");
  EXPECT_EQ(selectBanner(MainConfiguration(), "JP"), nullptr);
}

struct Location : ::testing::Test {
  Location() { options.locationCode.reset(); }

  World world;
  ConsentSDKOptions options = world.options();
};

TEST_F(Location, IsAskedForWhenItMattersAndRememberedForAnHour) {
  world.server.serve(configurationOfTwoLaws("US#CA"));
  world.server.onLocation(located(R"({"de":"US","en":"XX"})", R"({"en":"CA"})"));
  options.languageCode = "de";
  world.restart();
  world.sdk->setup(options);
  const auto banner = world.sdk->getBannerConfig(), again = world.sdk->getBannerConfig();
  banner.wait();
  again.wait();
  world.sdk->settled().wait();
  EXPECT_EQ(world.server.seen(locationPath).size(), 1u) << "who comes second waits for the answer to the first";
  EXPECT_EQ(world.text(key::currentLocation), "US#CA");
  EXPECT_EQ(world.text(key::currentComplianceType), "opt-out");
  world.advance(3599s);
  world.start(options);
  EXPECT_EQ(world.server.seen(locationPath).size(), 1u);
  world.server.onLocation(json("{}", 500));
  world.advance(1s);
  world.start(options);
  EXPECT_EQ(world.server.seen(locationPath).size(), 2u);
  EXPECT_EQ(world.text(key::currentComplianceType), "opt-out") << "an old answer is better than none";

  options.locationCode = "DE";
  world.start(options);
  EXPECT_EQ(world.text(key::currentComplianceType), "opt-in");
  EXPECT_EQ(world.server.seen(locationPath).size(), 2u);
}

TEST_F(Location, ThatIsLongInComingIsNotWaitedForAndAppliedOnceItIsThere) {
  world.server.serve(configurationOfTwoLaws("US"));
  std::promise<void> released;
  world.server.onLocation([gate = released.get_future().share()](const auto& request, auto& response) {
    gate.wait();
    located(R"({"en":"US"})", "{}")(request, response);
  });
  std::promise<void> ready;
  auto isReady = ready.get_future();
  world.restart();
  world.sdk->isReady([&](SDKStatus status) {
    if (status == SDKStatus::ready) ready.set_value();
  });
  world.sdk->setup(options);
  ASSERT_TRUE(world.server.waitFor(locationPath, 1));
  while (isReady.wait_for(1ms) != std::future_status::ready) world.clock->advance(100ms);
  EXPECT_EQ(world.text(key::currentComplianceType), "opt-in") << "the default's";
  EXPECT_TRUE(world.stored().date(key::locationFailedTimestamp));
  world.sdk->removeListeners();
  released.set_value();
  world.sdk->settled().wait();
  EXPECT_EQ(world.text(key::currentComplianceType), "opt-out");
  EXPECT_FALSE(world.stored().date(key::locationFailedTimestamp));
  EXPECT_EQ(world.server.seen(locationPath).size(), 1u);
}

TEST(Banner, IntervalTextIsReadStrictly) {
  const std::map<const char*, std::optional<std::int64_t>> cases{
      {"12 month", 12}, {"2 year", 24}, {"1 MONTH", 1}, {"0 month", 0}};
  for (const auto& [text, months] : cases) EXPECT_EQ(bannerIntervalMonths(text), months) << text;
  for (const char* text :
       {"", "month", "3  month", "3 months", "3 week", " 3 month", "-3 month", "9999999999999 year"}) {
    EXPECT_EQ(bannerIntervalMonths(text), std::nullopt) << text;
  }
}

TEST(Banner, IsDueAgainAnIntervalAfterItWasShown) {
  for (const auto& [interval, due] : {std::pair{"1 month", 1702592000}, {"nonsense", 1731622400}}) {  // 12 months
    World world;
    world.start();
    world.store(key::consentGivenType, std::string("CONSENT_EXPLICIT"));
    world.store(key::bannerShownDate, startSeconds);
    world.store(key::bannerInterval, std::string(interval));
    world.clock->jump(std::chrono::seconds(due - 1 - startSeconds));
    EXPECT_FALSE(world.sdk->isBannerDue()) << interval;
    world.clock->jump(1s);
    EXPECT_TRUE(world.sdk->isBannerDue()) << interval;
  }
}

TEST(Banner, IsDueByTheStoredAnswer) {
  struct Case {
    std::optional<std::int64_t> shownMonthsAgo;
    std::string givenType;
    bool present, due;
    std::string givenTypeAfter;
    BannerReason reason;
  };
  const std::string none = "CONSENT_NO_ACTION", implicit = "CONSENT_IMPLICIT", explicitly = "CONSENT_EXPLICIT";
  using enum BannerReason;
  for (const Case& example : std::vector<Case>{{{}, none, false, true, none, neverShown},
                                               {11, explicitly, false, false, explicitly, answered},
                                               {12, explicitly, false, true, explicitly, intervalOver},
                                               {{}, none, true, false, none, onScreen},
                                               {13, explicitly, true, false, explicitly, onScreen},
                                               {1, none, false, true, none, unanswered},
                                               {{}, implicit, false, true, implicit, neverShown},
                                               {1, implicit, false, false, explicitly, answered},
                                               {13, implicit, false, true, explicitly, intervalOver}}) {
    World world;
    world.start();
    world.store(key::consentGivenType, example.givenType);
    world.store(key::isBannerPresent, example.present);
    std::optional<std::int64_t> shown;
    if (example.shownMonthsAgo) {
      shown = wholeSeconds(world.clock->addMonths(world.clock->now(), -*example.shownMonthsAgo));
      world.store(key::bannerShownDate, *shown);
    }
    const auto before = *world.snapshot();
    const auto explanation = world.sdk->explainBanner();
    SCOPED_TRACE(example.givenType + ": " + explanation.text);
    EXPECT_EQ(explanation.isDue, example.due);
    EXPECT_EQ(explanation.reason, example.reason);
    EXPECT_EQ(*world.snapshot(), before) << "asking changes nothing";
    EXPECT_EQ(world.sdk->isBannerDue(), example.due);
    EXPECT_EQ(world.text(key::consentGivenType), example.givenTypeAfter);
    EXPECT_EQ(world.stored().boolean(key::isBannerPresent), example.due || example.present);
    EXPECT_EQ(world.stored().integer(key::bannerShownDate, 0), example.due ? startSeconds : shown.value_or(0));
    EXPECT_FALSE(world.sdk->isBannerDue()) << "it is on screen now, or was not due before";
  }
}

}  // namespace
}  // namespace quillon::test
