#include "core/Banner/BannerState.h"

#include <algorithm>
#include <limits>

#include "core/Banner/BannerSelection.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"

namespace quillon {

BannerState bannerState(const StoredValues& stored, const Clock& clock, bool isCoveredBySignals) {
  const std::int64_t now = wholeSeconds(clock.now());
  constexpr auto never = std::numeric_limits<std::int64_t>::min();
  const bool wasShown = stored.integer(key::bannerShownDate, never) != never;
  // Keeps the sum within the clock's range.
  constexpr std::int64_t farAway = 1'000'000'000'000;
  const std::int64_t shown = std::clamp(stored.integer(key::bannerShownDate, now), -farAway, farAway);
  const GivenType given = stored.consentGivenType();

  BannerState state{};
  state.promotesDefaults = given == GivenType::implicitly && shown != now;
  const auto interval = stored.string(key::bannerInterval, defaultBannerInterval);
  state.expires = wholeSeconds(clock.addMonths(WallTime(std::chrono::seconds(shown)),
                                               bannerIntervalMonths(interval).value_or(defaultBannerMonths)));
  const bool isAnswered = given == GivenType::explicitly || state.promotesDefaults;
  if (stored.boolean(key::isBannerPresent)) {
    state.reason = BannerReason::onScreen;
  } else if (isAnswered) {
    state.reason = state.expires <= now ? BannerReason::intervalOver : BannerReason::answered;
  } else {
    state.reason = wasShown ? BannerReason::unanswered : BannerReason::neverShown;
  }
  if (isCoveredBySignals && state.isDue()) state.reason = BannerReason::signal;
  return state;
}

}  // namespace quillon
