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
  constexpr std::int64_t month = 31 * 86'400;  // the one before the start
  using enum BannerReason;
  using enum GivenType;
  const struct {
    std::optional<std::int64_t> shownSecondsAgo;
    GivenType given;
    bool isPresent;
    BannerReason reason;
    GivenType givenAfter;
  } cases[] = {{std::nullopt, noAction, false, neverShown, noAction},
               {std::nullopt, noAction, true, onScreen, noAction},
               {1, noAction, false, unanswered, noAction},
               {month - 1, explicitly, false, answered, explicitly},
               {month, explicitly, false, intervalOver, explicitly},
               {std::nullopt, implicitly, false, neverShown, implicitly},
               {1, implicitly, false, answered, explicitly}};
  for (const auto& [shownSecondsAgo, given, isPresent, reason, givenAfter] : cases) {
    World world;
    world.start();
    world.store(key::consentGivenType, std::string(rawValue(given)));
    world.store(key::isBannerPresent, isPresent);
    world.store(key::bannerInterval, "1 month");
    if (shownSecondsAgo) world.store(key::bannerShownDate, startSeconds - *shownSecondsAgo);
    const auto before = *world.snapshot();
    const auto explanation = world.sdk->explainBanner();
    SCOPED_TRACE(explanation.text);
    EXPECT_EQ(explanation.reason, reason);
    EXPECT_EQ(*world.snapshot(), before) << "asking changes nothing";
    EXPECT_EQ(world.sdk->isBannerDue(), explanation.isDue);
    EXPECT_EQ(world.stored().consentGivenType(), givenAfter);
    EXPECT_FALSE(world.sdk->isBannerDue()) << "it is on screen now, or was not due before";
  }
}

}  // namespace
}  // namespace quillon::test
