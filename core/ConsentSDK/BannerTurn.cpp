#include "core/ConsentSDK/BannerTurn.h"

#include <algorithm>
#include <limits>

#include "core/ConsentSDK/BannerSelection.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"

namespace quillon {

BannerTurn bannerTurn(const StoredValues& stored, const Clock& clock) {
  const std::int64_t now = wholeSeconds(clock.now());
  constexpr auto never = std::numeric_limits<std::int64_t>::min();
  const bool wasShown = stored.integer(key::bannerShownDate, never) != never;
  // Within what the clock can count from.
  constexpr std::int64_t farAway = 1'000'000'000'000;
  const std::int64_t shown = std::clamp(stored.integer(key::bannerShownDate, now), -farAway, farAway);
  const std::string given = stored.consentGivenType();

  BannerTurn turn{};
  turn.promotesDefaults = given == givenType::implicitly && shown != now;
  const auto interval = stored.string(key::bannerInterval, defaultBannerInterval);
  turn.expires = wholeSeconds(clock.addMonths(WallTime(std::chrono::seconds(shown)),
                                              bannerIntervalMonths(interval).value_or(defaultBannerMonths)));
  const bool isAnswered = given == givenType::explicitly || turn.promotesDefaults;
  if (stored.boolean(key::isBannerPresent)) {
    turn.reason = BannerReason::onScreen;
  } else if (isAnswered) {
    turn.reason = turn.expires <= now ? BannerReason::intervalOver : BannerReason::answered;
  } else {
    turn.reason = wasShown ? BannerReason::unanswered : BannerReason::neverShown;
  }
  return turn;
}

}  // namespace quillon
