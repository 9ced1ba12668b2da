#include <gtest/gtest.h>

#include <atomic>
#include <boost/json/serialize.hpp>
#include <map>

#include "core/ConsentSDK/BannerSelection.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "platform/memory/FailingFileSystem.h"
#include "platform/memory/FixedHostApplication.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

using namespace std::chrono_literals;

std::string versioned(int version) {
  auto document = validConfiguration();
  document["version"] = version;
  return boost::json::serialize(document);
}

TEST(Configuration, IsFetchedOnceAnHour) {
  World world;
  world.start();
  EXPECT_EQ(world.server.seen(configurationPath).size(), 1u);
  EXPECT_EQ(world.server.seen().front().path, "/consent/mobile_banner/t1/a1/live/config_en.json");
  world.advance(3600s);
  world.start();
  EXPECT_EQ(world.server.seen(configurationPath).size(), 1u) << "3600 seconds old is fresh";
  world.advance(1s);
  world.start();
  EXPECT_EQ(world.server.seen(configurationPath).size(), 2u) << "3601 seconds old is not";
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::ready);
}

TEST(Configuration, FallsBackToTheDefaultFileOnlyWhenTheLanguageIsMissing) {
  World world;
  world.server.onConfiguration([](const auto& request, auto& response) {
    if (request.path.ends_with("/config.json")) return json(versioned(1))(request, response);
    response.status = 404;
  });
  ConsentSDKOptions options = world.options();
  options.languageCode = "DE";
  world.start(options);
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::ready);
  EXPECT_EQ(world.text(key::languageCode), "de");
  EXPECT_NE(world.log().find("[ERROR]CDN Configuration with de language code not found\n"), std::string::npos);
  EXPECT_EQ(world.log().find("URLRequest"), std::string::npos) << "a missing file is not logged in full";
}

struct BadAnswer {
  const char* name;
  ConsentServer::Handler handler;
  std::string logged;
};

class BadConfiguration : public testing::TestWithParam<BadAnswer> {};

TEST_P(BadConfiguration, IsExplainedAndLosesNothing) {
  World world;
  world.server.onConfiguration(GetParam().handler);
  world.start();
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::unavailable);
  EXPECT_FALSE(std::filesystem::exists(world.file()));
  EXPECT_NE(world.log().find(GetParam().logged), std::string::npos) << world.log();
  EXPECT_EQ(world.server.seen(configurationPath).size(), 1u) << "no retry";
  EXPECT_EQ(world.log().find("secret-token"), std::string::npos);

  world.server.serve(versioned(5));
  world.start();
  ASSERT_EQ(world.sdk->getStatus(), SDKStatus::ready);
  ASSERT_TRUE(world.sdk->acceptOrReject(true).get());
  world.advance(2h);
  world.server.onConfiguration(GetParam().handler);
  world.start();
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::ready) << "the cached copy serves";
  EXPECT_EQ(world.sdk->get(1), ConsentStatus::granted);
}

INSTANTIATE_TEST_SUITE_P(
    Answers, BadConfiguration,
    testing::Values(
        BadAnswer{"ServerError", json("oh\nno", 500), "  Status Code: 500\n  Headers: ["},
        BadAnswer{"CaptivePortal", json("<html>Sign in</html>"), "Data: { <html>Sign in</html> }"},
        BadAnswer{"TruncatedBody", json(versioned(5).substr(0, 200)), "Failed to Decode MainConfiguration : "},
        BadAnswer{"MissingToken", json(R"({"x-auth-token" : "secret-token", "version": "x"})"),
                  R"(Data: { {"x-auth-token" : "***", "version": "x"} })"},
        BadAnswer{"WrongTypeDeepInside", json(R"({"purposes":[{"sdks":[{"sdk_id":"seven"}]}]})"),
                  "purposes[0].sdks[0].sdk_id: expected an integer"},
        BadAnswer{"OverTheCap",
                  [](const auto&, auto& response) { response.set_content(std::string(33 << 20, ' '), "text/plain"); },
                  "Failed to fetch CDN File: "}),
    [](const auto& test) { return test.param.name; });

TEST(Configuration, NeedsAnAddressAndAServer) {
  World world;
  ConsentSDKOptions options = world.options();
  options.cdnUrl = "not an address";
  world.start(options);
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::unavailable);
  EXPECT_NE(world.log().find("Failed to fetch CDN File: Invalid URL error ocurred.\nnot an address"),
            std::string::npos);
  options.cdnUrl = "http://127.0.0.1:1/";
  world.start(options);
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::unavailable);
  EXPECT_TRUE(world.server.seen(configurationPath).empty());
}

TEST(Configuration, UnchangedCostsNoBody) {
  World world;
  world.server.serve(versioned(5), "\"v5\"");
  world.start();
  EXPECT_EQ(world.text(key::etag), "\"v5\"");
  world.advance(2h);
  world.start();
  EXPECT_NE(world.log().find("[INFO]CDN Configuration is up to date"), std::string::npos);
  EXPECT_EQ(world.server.seen(configurationPath).back().headers.find("If-None-Match")->second, "\"v5\"");
  EXPECT_EQ(world.server.seen(configurationPath).size(), 2u);
}

// The server says "unchanged" about a document that is not the one on disk.
TEST(Configuration, UnchangedIsNotBelievedWithoutThatDocument) {
  World world;
  world.server.serve(versioned(5), "\"v5\"");
  world.start();
  std::filesystem::remove(world.file());
  world.start();
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::ready);
  EXPECT_EQ(world.server.seen(configurationPath).size(), 3u) << "asked once more without the tag";

  world.server.serve(versioned(6), "\"v6\"");
  world.store(key::etag, "\"v6\"");  // its answer came, but the process ended before it was saved
  world.advance(2h);
  world.start();
  EXPECT_EQ(world.stored().integer(key::configurationVersion, 0), 6);
}

TEST(Configuration, TagOfAnyAnswerTakesTheOneSlot) {
  World world;
  world.start();
  world.server.onUpload([](const auto&, auto& response) {
    response.set_header("etag", "\"of the upload\"");
    response.set_content(R"({"status":0,"message":"ok"})", "application/json");
  });
  world.sdk->acceptOrReject(true).wait();
  EXPECT_EQ(world.text(key::etag), "\"of the upload\"");
  world.server.onConfiguration([](const auto&, auto& response) {
    response.set_header("ETag", "\"undecodable\"");
    response.set_content("nonsense", "text/plain");
  });
  world.advance(2h);
  world.start();
  EXPECT_EQ(world.text(key::etag), "\"undecodable\"") << "kept although the body is not";
}

TEST(Configuration, ReconsentAsksAgainForANewerVersionOnly) {
  World world;
  world.start();
  ASSERT_TRUE(world.sdk->isBannerDue());
  world.sdk->acceptOrReject(true).wait();
  const auto publish = [&](int version) {
    world.server.serve(versioned(version));
    world.advance(2h);
    world.restart();
    world.start();
  };
  publish(5);
  EXPECT_FALSE(world.sdk->isBannerDue());
  publish(4);
  EXPECT_FALSE(world.sdk->isBannerDue());
  publish(6);
  EXPECT_EQ(world.text(key::consentGivenType), "CONSENT_NO_ACTION");
  EXPECT_EQ(world.sdk->get(1), ConsentStatus::granted) << "what was decided stands until it is answered anew";
  EXPECT_TRUE(world.sdk->isBannerDue());
}

// A host whose application carries these documents, and a server that has none yet.
struct Bundled : testing::Test {
  Bundled() {
    world.amend = [this](Platform& platform) {
      platform.host = std::make_shared<FixedHostApplication>(FixedHostApplication::Description{.resources = resources});
    };
    world.server.onConfiguration(json("{}", 503));
    options.bundledConfiguration = "consent.json";
  }
  std::int64_t version() { return world.stored().integer(key::configurationVersion, 0); }

  World world;
  ConsentSDKOptions options = world.options();
  FixedHostApplication::Texts resources{{"consent.json", versioned(5)}};
};

TEST_F(Bundled, ServesUntilTheFirstDownload) {
  world.start(options);
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::ready);
  EXPECT_EQ(world.sdk->getPurposeConsents().get().size(), 3u);
  EXPECT_TRUE(world.sdk->isBannerDue());
  EXPECT_TRUE(world.sdk->acceptOrReject(true).get());
  EXPECT_FALSE(std::filesystem::exists(world.file())) << "it is no download";
  world.restart();
  world.start(options);
  EXPECT_EQ(world.server.seen(configurationPath).size(), 2u) << "every start asks for the newest";
  EXPECT_FALSE(world.sdk->isBannerDue());

  world.server.serve(versioned(6));
  world.sdk->checkConsents().wait();
  EXPECT_EQ(version(), 6);
  EXPECT_EQ(world.stored().consentGivenType(), "CONSENT_NO_ACTION") << "re-consent";
  world.sdk->acceptOrReject(true).wait();
  world.server.onConfiguration(json("{}", 503));
  std::filesystem::remove(world.file());
  world.start(options);
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::unavailable) << "the older one never comes back";
  EXPECT_TRUE(world.sdk->getPurposeConsents().get().empty());
  EXPECT_EQ(version(), 6);
  EXPECT_EQ(world.stored().consentGivenType(), "CONSENT_EXPLICIT");
}

TEST_F(Bundled, IsCheckedLikeADownload) {
  auto german = validConfiguration();
  german["version"] = 7;
  resources = {{"consent_de.json", boost::json::serialize(german)}, {"consent.json", R"({"version":"8"})"}};
  world.start(options);
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::unavailable);
  EXPECT_NE(world.log().find("The bundled configuration is ignored: consent.json: version: expected an integer"),
            std::string::npos)
      << world.log();
  options.languageCode = "de";
  world.start(options);
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::ready);
  EXPECT_EQ(version(), 7);
  options.bundledConfiguration = "../absent";
  world.start(options);
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::unavailable);
  EXPECT_NE(world.log().find("[ERROR]The bundled configuration is missing: ../absent.json"), std::string::npos);
}

TEST(Cache, UnreadableFileIsReplacedSilently) {
  World world;
  world.start();
  setFileBytes(world.file(), "{\"version\": ");
  world.restart();
  world.start();
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::ready);
  EXPECT_EQ(world.log().find("Error reading"), std::string::npos);
}

TEST(Cache, FailedSaveKeepsTheEarlierFile) {
  World world;
  std::atomic<bool> full = false;
  world.amend = [&](Platform& platform) {
    platform.files = std::make_shared<FailingFileSystem>(
        platform.files, [&](std::string_view change) { return full && change == "write"; });
  };
  world.start();
  const std::string earlier = fileBytes(world.file());
  full = true;
  world.server.serve(versioned(6));
  world.advance(2h);
  world.start();
  EXPECT_EQ(fileBytes(world.file()), earlier);
  EXPECT_FALSE(std::filesystem::exists(world.backup()));
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::ready);
  EXPECT_NE(world.log().find("[ERROR]Error saving CDN: the disk is broken"), std::string::npos);
  EXPECT_NE(world.log().find("Backup restored to original: " + world.file().string()), std::string::npos);
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

TEST(Location, IsAskedForWhenItMattersAndRememberedForAnHour) {
  World world;
  auto document = validConfiguration();
  document["banner_config"].as_object()["categories"].as_object()["us"] = {{"compliance_type", "opt-out"}};
  document["banner_config"].as_object()["locations"].as_object()["US#CA"] = "us";
  world.server.serve(boost::json::serialize(document));
  const auto location = json(R"({"status":0,"message":"","data":{"City":{},"Continent":{},"Country":{},
    "CountryISOCode":{"de":"US","en":"XX"},"Language":{},"Location":{},"RegisteredCountry":{},"State":{},
    "StateISOCode":{"en":"CA"}}})");
  world.server.onLocation(location);
  ConsentSDKOptions options = world.options();
  options.locationCode.reset();
  options.languageCode = "de";
  world.start(options);
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

  World another;
  another.server.serve(boost::json::serialize(document));
  another.server.onLocation(location);
  options = another.options();
  another.start(options);
  options.locationCode.reset();
  another.sdk->setup(options);
  const auto banner = another.sdk->getBannerConfig(), again = another.sdk->getBannerConfig();
  banner.wait();
  again.wait();
  EXPECT_EQ(another.server.seen(locationPath).size(), 1u) << "who comes second waits for the answer to the first";
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

TEST(Banner, IntervalIsAddedByTheCalendar) {
  struct Case {
    std::int64_t shown;  // seconds since 1970
    std::string interval;
    std::int64_t due;
  };
  for (const Case& example : std::vector<Case>{{1706659200, "1 month", 1709164800},  // 31 January, 29 February 2024
                                               {1709164800, "1 year", 1740700800},   // 29 February, 28 February 2025
                                               {1700000000, "nonsense", 1731622400}}) {  // twelve months
    World world;
    world.store(key::consentGivenType, std::string("CONSENT_EXPLICIT"));
    world.store(key::bannerShownDate, example.shown);
    world.store(key::bannerInterval, example.interval);
    world.clock->jump(std::chrono::seconds(example.due - 1 - startSeconds));
    EXPECT_FALSE(world.sdk->isBannerDue()) << example.interval;
    world.clock->jump(std::chrono::seconds(1));
    EXPECT_TRUE(world.sdk->isBannerDue()) << example.interval;
  }
}

struct DueCase {
  const char* name;
  std::optional<std::int64_t> shownMonthsAgo;
  std::string givenType;
  bool present;
  bool due;
  std::string givenTypeAfter;
  BannerReason reason;
};

class BannerDue : public testing::TestWithParam<DueCase> {};

TEST_P(BannerDue, FollowsTheStoredAnswer) {
  const DueCase& example = GetParam();
  World world;
  world.store(key::consentGivenType, example.givenType);
  world.store(key::isBannerPresent, example.present);
  std::optional<std::int64_t> shown;
  if (example.shownMonthsAgo) {
    shown = wholeSeconds(world.clock->addMonths(world.clock->now(), -*example.shownMonthsAgo));
    world.store(key::bannerShownDate, *shown);
  }
  const auto before = *world.snapshot();
  const auto explanation = world.sdk->explainBanner();
  EXPECT_EQ(explanation.isDue, example.due);
  EXPECT_EQ(explanation.reason, example.reason) << explanation.text;
  EXPECT_EQ(*world.snapshot(), before) << "asking changes nothing";
  EXPECT_EQ(world.sdk->isBannerDue(), example.due);
  EXPECT_EQ(world.text(key::consentGivenType), example.givenTypeAfter);
  EXPECT_EQ(world.stored().boolean(key::isBannerPresent), example.due || example.present);
  EXPECT_EQ(world.stored().integer(key::bannerShownDate, 0), example.due ? startSeconds : shown.value_or(0));
  EXPECT_FALSE(world.sdk->isBannerDue()) << "it is on screen now, or was not due before";
}

INSTANTIATE_TEST_SUITE_P(Store, BannerDue,
                         testing::Values(DueCase{"NeverShown", std::nullopt, "CONSENT_NO_ACTION", false, true,
                                                 "CONSENT_NO_ACTION", BannerReason::neverShown},
                                         DueCase{"AnsweredElevenMonthsAgo", 11, "CONSENT_EXPLICIT", false, false,
                                                 "CONSENT_EXPLICIT", BannerReason::answered},
                                         DueCase{"AnsweredTwelveMonthsAgo", 12, "CONSENT_EXPLICIT", false, true,
                                                 "CONSENT_EXPLICIT", BannerReason::intervalOver},
                                         DueCase{"OnScreen", std::nullopt, "CONSENT_NO_ACTION", true, false,
                                                 "CONSENT_NO_ACTION", BannerReason::onScreen},
                                         DueCase{"OnScreenAndElapsed", 13, "CONSENT_EXPLICIT", true, false,
                                                 "CONSENT_EXPLICIT", BannerReason::onScreen},
                                         DueCase{"ShownAndNotAnswered", 1, "CONSENT_NO_ACTION", false, true,
                                                 "CONSENT_NO_ACTION", BannerReason::unanswered},
                                         DueCase{"ImplicitNeverShown", std::nullopt, "CONSENT_IMPLICIT", false, true,
                                                 "CONSENT_IMPLICIT", BannerReason::neverShown},
                                         DueCase{"ImplicitShownBefore", 1, "CONSENT_IMPLICIT", false, false,
                                                 "CONSENT_EXPLICIT", BannerReason::answered},
                                         DueCase{"ImplicitShownLongAgo", 13, "CONSENT_IMPLICIT", false, true,
                                                 "CONSENT_EXPLICIT", BannerReason::intervalOver}),
                         [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace quillon::test
