#include <gtest/gtest.h>

#include <boost/json/object.hpp>

#include "core/Integrations/GoogleConsentModeHelper.h"
#include "platform/parts/FunctionConsentSink.h"
#include "tests/support/Contains.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

TEST(ConsentModeMapping, PrefersTheExactRegionThenTheStateThenTheDefault) {
  const auto mappingTo = [](std::int64_t purpose) {
    return DefaultMapping{.analyticsStorage = std::vector<std::int64_t>{purpose}};
  };
  GcmConfig configuration;
  configuration.defaultMapping = mappingTo(0);
  configuration.regionOverrides = {{"US , GB", mappingTo(1)}, {"CA,NY", mappingTo(2)}, {"US#CA", mappingTo(3)}};
  const std::pair<std::optional<std::string>, std::int64_t> rows[] = {
      {"US", 1}, {"GB", 1},    {"US#NY", 2}, {"US#CA", 3}, {"DE#NY", 2},
      {"us", 0}, {"US#TX", 0}, {"", 0},      {"#", 0},     {std::nullopt, 0}};
  for (const auto& [location, expected] : rows) {
    EXPECT_EQ(*consentModeMapping(configuration, location), mappingTo(expected)) << location.value_or("none");
  }
  configuration.defaultMapping.reset();
  EXPECT_EQ(consentModeMapping(configuration, "FR"), nullptr);
}

struct ConsentMode : ::testing::Test {
  ConsentMode() {
    world.amend = [this](Platform& platform) { platform.consentSink = sink; };
  }
  // Another process with that configuration.
  void start(const boost::json::object& consentMode, boost::json::object changes = {}) {
    changes.emplace("is_gcm_enabled", true);
    changes.emplace("gcm_config", consentMode);
    world.server.serve(configurationWith(changes));
    world.restart();
    ConsentSDKOptions options = world.options();
    options.logLevel = LogLevel::debug;
    world.startLater(options);
  }

  using Signals = std::map<std::string, std::string>;
  const boost::json::object mapped{
      {"default_mapping",
       {{"analytics_storage", {1}}, {"ad_storage", {1, 3}}, {"ad_user_data", boost::json::array()}}}};
  Signals sent;
  std::shared_ptr<ConsentSink> sink =
      std::make_shared<FunctionConsentSink>([this](const Signals& signals) { sent = signals; });
  World world;
};

TEST_F(ConsentMode, FollowsEveryDecision) {
  const auto sentAre = [this](const char* analytics, const char* ads) {
    world.sdk->settled().wait();
    EXPECT_EQ(sent, (Signals{{"analytics_storage", analytics},
                             {"ad_storage", ads},
                             {"ad_user_data", "denied"},
                             {"ad_personalization", "denied"}}));
  };
  start(mapped);
  sentAre("denied", "denied");  // opt-in, nothing decided
  world.tracking = TrackingAuthorization::authorized;
  world.sdk->acceptOrReject(true).wait();
  sentAre("granted", "granted");
  world.sdk->set({.purposeId = 3}, ConsentStatus::withDrawn);
  sentAre("granted", "denied");
  EXPECT_TRUE(contains(world.log(),
                       "setFirebaseConsent(consentMap:) - Firebase consent updated successfully: "
                       "[\"analytics_storage\": \"granted\", \"ad_storage\": \"denied\", \"ad_user_data\": \"denied\", "
                       "\"ad_personalization\": \"denied\"]"));
  using enum GoogleConsentType;
  using enum ConsentStatus;
  EXPECT_EQ(
      world.sdk->getGCMConsents().get(),
      (std::map<GoogleConsentType, ConsentStatus>{
          {analyticsStorage, granted}, {adStorage, declined}, {adUserData, declined}, {adPersonalization, declined}}));
}

TEST_F(ConsentMode, IsOnlyLoggedWithoutALibraryThatTakesIt) {
  const std::pair<std::shared_ptr<ConsentSink>, const char*> rows[] = {
      {nullptr, "Firebase Analytics not found in project"},
      {std::make_shared<FunctionConsentSink>(nullptr), "Firebase Analytics setConsent method not found"},
      {std::make_shared<FunctionConsentSink>([](const Signals&) { throw std::runtime_error("broken"); }),
       "The host's analytics library threw: broken"}};
  for (const auto& [library, said] : rows) {
    sink = library;
    start(mapped);
    EXPECT_TRUE(contains(world.log(), said));
    EXPECT_EQ(world.sdk->getStatus(), SDKStatus::ready);
  }
}

TEST_F(ConsentMode, IsLeftAloneUnlessItIsDriven) {
  start(mapped, {{"is_gcm_enabled", false}});
  EXPECT_TRUE(world.sdk->getGCMConsents().get().empty());
  start({});
  EXPECT_TRUE(sent.empty());
  EXPECT_TRUE(contains(world.log(), "No GCM mapping found for location: DE"));
  EXPECT_TRUE(world.sdk->getGCMConsents().get().empty());
}

TEST_F(ConsentMode, ReachesThePagesOfTheHostInAScriptThatNothingBreaksOutOf) {
  start(mapped, {{"purposes",
                  {{{"purpose_id", 1},
                    {"purpose_name", {{"en", "</script><script>alert('1')//\"\\\u2028\u2029]]><!--\n&__proto__"}}}}}}});
  ASSERT_TRUE(world.sdk->acceptOrReject(true).get());
  EXPECT_EQ(
      world.sdk->consentScript().get(),
      R"(window.quillonConsents={"purposes":[{"id":1,"name":"\u003c/script\u003e\u003cscript\u003ealert('1')//\"\\)"
      R"(\u2028\u2029]]\u003e\u003c!--\n\u0026__proto__","status":"granted"}],)"
      R"("permissions":[{"permission":"NSCameraUsageDescription","status":"granted"},)"
      R"({"permission":"NSContactsUsageDescription","status":"declined"}]};)"
      "\nwindow.dataLayer=window.dataLayer||[];\n"
      "window.gtag=window.gtag||function(){window.dataLayer.push(arguments);};\n"
      R"(window.gtag('consent','default',{"ad_personalization":"denied","ad_storage":"denied","ad_user_data":"denied",)"
      R"("analytics_storage":"denied"});)"
      "\n"
      R"(window.gtag('consent','update',{"ad_personalization":"denied","ad_storage":"denied","ad_user_data":"denied",)"
      R"("analytics_storage":"granted"});)"
      "\n");
  World fresh;
  fresh.restart();
  EXPECT_EQ(fresh.sdk->consentScript().get(), "window.quillonConsents={\"purposes\":[],\"permissions\":[]};\n");
}

}  // namespace
}  // namespace quillon::test
