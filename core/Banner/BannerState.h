// When the banner is due: the one rule by which it is shown, and explained.
#pragma once

#include "core/Persistance/UserDefaults/StoredValues.h"
#include "platform/Clock.h"
#include "quillon/Explanations.h"

namespace quillon {

struct BannerState {
  // Never `reconsent`: explainBanner() tells that from `unanswered`. Never `noConfiguration`, which only callers know.
  BannerReason reason;
  std::int64_t expires;  // whole seconds since 1970
  // Who has seen the banner before and said nothing has agreed to the defaults: they count as explicit from now on.
  bool promotesDefaults;

  bool isDue() const {
    return reason != BannerReason::onScreen && reason != BannerReason::answered && reason != BannerReason::signal;
  }
};

// `isSettled`: privacy signals answer all that it would ask.
[[nodiscard]] BannerState bannerState(const StoredValues& stored, const Clock& clock, bool isSettled);

// The state in words. `hasDecisions`: a purpose has been decided about before.
[[nodiscard]] BannerExplanation explainBanner(const StoredValues& stored, const Clock& clock, bool hasConfiguration,
                                              bool isSettled, bool hasDecisions);

}  // namespace quillon
