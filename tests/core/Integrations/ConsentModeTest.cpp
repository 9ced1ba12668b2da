#include <gtest/gtest.h>

#include <algorithm>
#include <boost/json/serialize.hpp>

#include "core/Integrations/GoogleConsentModeHelper.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "platform/parts/FunctionConsentSink.h"
#include "tests/support/Contains.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

DefaultMapping mappingTo(std::int64_t purpose) {
  return {.analyticsStorage = std::vector<std::int64_t>{purpose}};
}

TEST(ConsentModeMapping, PrefersTheExactRegionThenTheStateThenTheDefault) {
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
  EXPECT_NE(consentModeMapping(configuration, "US"), nullptr);
}

class ConsentMode : public ::testing::Test {
 protected:
  ConsentMode() {
    document["is_gcm_enabled"] = true;
    document["gcm_config"] = {
        {"default_mapping",
         {{"analytics_storage", {1}}, {"ad_storage", {1, 3}}, {"ad_user_data", boost::json::array()}}}};
    world.amend = [this](Platform& platform) { platform.consentSink = sink; };
  }

  void start() {
    world.server.serve(document);
    ConsentSDKOptions options = world.options();
    options.logLevel = LogLevel::debug;
    world.start(options);
  }
  bool logged(const std::string& text) const { return world.log().find(text) != std::string::npos; }

  using Signals = std::map<std::string, std::string>;
  boost::json::object document = validConfiguration();
  std::mutex mutex;
  std::vector<Signals> sent;
  std::shared_ptr<ConsentSink> sink = std::make_shared<FunctionConsentSink>([this](const Signals& signals) {
    const std::scoped_lock lock(mutex);
    sent.push_back(signals);
  });
  World world;
};

TEST_F(ConsentMode, FollowsEveryDecision) {
  const auto signals = [](const char* analytics, const char* ads) {
    return Signals{{"analytics_storage", analytics},
                   {"ad_storage", ads},
                   {"ad_user_data", "denied"},
                   {"ad_personalization", "denied"}};
  };
  start();
  EXPECT_EQ(sent.back(), signals("denied", "denied")) << "opt-in, nothing decided";
  world.tracking = TrackingAuthorization::authorized;
  world.sdk->acceptOrReject(true).wait();
  EXPECT_EQ(sent.back(), signals("granted", "granted"));
  world.sdk->set({.purposeId = 3}, ConsentStatus::withDrawn);
  world.sdk->settled().wait();
  EXPECT_EQ(sent.back(), signals("granted", "denied"));
  EXPECT_TRUE(
      logged("setFirebaseConsent(consentMap:) - Firebase consent updated successfully: [\"analytics_storage\": "
             "\"granted\", \"ad_storage\": \"denied\", \"ad_user_data\": \"denied\", "
             "\"ad_personalization\": \"denied\"]"));
  using enum GoogleConsentType;
  using enum ConsentStatus;
  EXPECT_EQ(
      world.sdk->getGCMConsents().get(),
      (std::map<GoogleConsentType, ConsentStatus>{
          {analyticsStorage, granted}, {adStorage, declined}, {adUserData, declined}, {adPersonalization, declined}}));
  EXPECT_TRUE(world.sdk->getGCMConfig().get()->defaultMapping);
}

TEST_F(ConsentMode, IsOnlyLoggedWithoutALibraryThatTakesIt) {
  sink = nullptr;
  start();
  EXPECT_TRUE(logged("[DEBUG] [GoogleConsentModeHelper:"));
  EXPECT_TRUE(logged("Firebase Analytics not found in project"));
  sink = std::make_shared<FunctionConsentSink>(nullptr);
  world.restart();
  start();
  EXPECT_TRUE(logged("Firebase Analytics setConsent method not found"));
  sink = std::make_shared<FunctionConsentSink>([](const Signals&) { throw std::runtime_error("broken"); });
  world.restart();
  start();
  EXPECT_TRUE(logged("The host's analytics library threw: broken"));
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::ready);
}

TEST_F(ConsentMode, IsLeftAloneUnlessItIsDriven) {
  document["is_gcm_enabled"] = false;
  start();
  EXPECT_TRUE(sent.empty());
  document["is_gcm_enabled"] = true;
  document["gcm_config"] = boost::json::object();
  world.advance(std::chrono::hours(2));
  start();
  EXPECT_TRUE(sent.empty());
  EXPECT_TRUE(logged("No GCM mapping found for location: DE"));
  EXPECT_TRUE(world.sdk->getGCMConsents().get().empty());
}

TEST_F(ConsentMode, ReachesThePagesOfTheHostInAScriptThatNothingBreaksOutOf) {
  document["purposes"].at(0).at("purpose_name") = {
      {"en", "</script><script>alert('1')//\"\\\u2028\u2029]]><!--\n&__proto__"}};
  start();
  ASSERT_TRUE(world.sdk->acceptOrReject(true).get());
  EXPECT_EQ(
      world.sdk->consentScript().get(),
      R"(window.quillonConsents={"purposes":[{"id":1,"name":"\u003c/script\u003e\u003cscript\u003ealert('1')//\"\\)"
      R"(\u2028\u2029]]\u003e\u003c!--\n\u0026__proto__","status":"granted"},{"id":2,"name":"Security","status":"granted"},)"
      R"({"id":3,"name":"Advertising","status":"declined"}],)"
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
  document = validConfiguration();
  world.server.serve(document);
  world.advance(std::chrono::hours(2));
  start();
  EXPECT_FALSE(contains(world.sdk->consentScript().get(), "gtag")) << "no consent mode is configured";
  World fresh;
  fresh.restart();
  EXPECT_EQ(fresh.sdk->consentScript().get(), "window.quillonConsents={\"purposes\":[],\"permissions\":[]};\n");
}

}  // namespace
}  // namespace quillon::test
