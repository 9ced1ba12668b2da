// Which banner is for whom, and when it is due.
#include <gtest/gtest.h>

#include "core/Banner/BannerSelection.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

TEST(Banner, IsSelectedByLocation) {
  MainConfiguration configuration;
  configuration.bannerConfig =
      ConsentBannerConfig{{{"eu", {.name = "eu"}}, {"us", {.name = "us"}}, {"ca", {.name = "ca"}}},
                          {{"California", "ca"}, {"Nowhere", "gone"}},
                          {{"US#CA", "California"}, {"US", "us"}, {"DE", "eu"}, {"FR", "Nowhere"}, {"default", "us"}}};
  const std::vector<std::pair<std::optional<std::string>, std::string>> cases{
      {"US#CA", "ca"}, {"US#NY", "us"}, {"DE#BE", "eu"}, {"FR", "us"}, {"JP", "us"}, {std::nullopt, "us"}};
  for (const auto& [location, expected] : cases) {
    EXPECT_EQ(selectBanner(configuration, location)->name, expected) << location.value_or("none");
  }
  configuration.bannerConfig->locations.erase("default");
  EXPECT_EQ(selectBanner(configuration, "JP")->name, "ca") << "the first one in key order";
  configuration.bannerConfig->categories["default"].name = "default";
  EXPECT_EQ(selectBanner(configuration, "JP")->name, "default");
  EXPECT_EQ(selectBanner(MainConfiguration(), "JP"), nullptr);
}

TEST(Banner, IntervalTextIsReadStrictly) {
  const std::pair<const char*, std::optional<std::int64_t>> cases[] = {
      {"12 month", 12}, {"2 year", 24},   {"1 MONTH", 1},   {"0 month", 0},
      {"", {}},         {"month", {}},    {"3  month", {}}, {"3 months", {}},
      {"3 week", {}},   {" 3 month", {}}, {"-3 month", {}}, {"9999999999999 year", {}}};
  for (const auto& [text, months] : cases) EXPECT_EQ(bannerIntervalMonths(text), months) << text;
}

TEST(Banner, IsDueByTheStoredAnswer) {
  struct Case {
    std::optional<std::int64_t> shownSecondsAgo;
    std::string givenType;
    bool present, due;
    BannerReason reason;
    std::string givenTypeAfter = givenType;
    std::string interval = "1 month";
  };
  constexpr std::int64_t month = 31 * 86'400, year = 365 * 86'400;  // those before the start
  const std::string none = "CONSENT_NO_ACTION", implicit = "CONSENT_IMPLICIT", explicitly = "CONSENT_EXPLICIT";
  using enum BannerReason;
  for (const Case& example : std::vector<Case>{{{}, none, false, true, neverShown},
                                               {month - 1, explicitly, false, false, answered},
                                               {month, explicitly, false, true, intervalOver},
                                               {year - 1, explicitly, false, false, answered, explicitly, "nonsense"},
                                               {year, explicitly, false, true, intervalOver, explicitly, "nonsense"},
                                               {{}, none, true, false, onScreen},
                                               {year, explicitly, true, false, onScreen},
                                               {1, none, false, true, unanswered},
                                               {{}, implicit, false, true, neverShown},
                                               {1, implicit, false, false, answered, explicitly},
                                               {year, implicit, false, true, intervalOver, explicitly}}) {
    World world;
    world.start();
    world.store(key::consentGivenType, example.givenType);
    world.store(key::isBannerPresent, example.present);
    world.store(key::bannerInterval, example.interval);
    if (example.shownSecondsAgo) world.store(key::bannerShownDate, startSeconds - *example.shownSecondsAgo);
    const auto before = *world.snapshot();
    const auto explanation = world.sdk->explainBanner();
    SCOPED_TRACE(example.givenType + ": " + explanation.text);
    EXPECT_EQ(explanation.isDue, example.due);
    EXPECT_EQ(explanation.reason, example.reason);
    EXPECT_EQ(*world.snapshot(), before) << "asking changes nothing";
    EXPECT_EQ(world.sdk->isBannerDue(), example.due);
    EXPECT_EQ(world.text(key::consentGivenType), example.givenTypeAfter);
    EXPECT_FALSE(world.sdk->isBannerDue()) << "it is on screen now, or was not due before";
  }
}

}  // namespace
}  // namespace quillon::test
