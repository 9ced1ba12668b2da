// The rule by which the banner is due.
#pragma once

#include "core/Persistance/UserDefaults/StoredValues.h"
#include "platform/Clock.h"
#include "quillon/Explanations.h"

namespace quillon {

struct BannerState {
  // Never `reconsent`, which explainBanner() distinguishes from `unanswered`, and never `noConfiguration`, which only
  // callers know.
  BannerReason reason;
  std::int64_t expires;  // whole seconds since 1970
  // The user has seen the banner and not answered: the recorded defaults count as explicit from now on.
  bool promotesDefaults;

  bool isDue() const {
    return reason != BannerReason::onScreen && reason != BannerReason::answered && reason != BannerReason::signal;
  }
};

// `isCoveredBySignals`: privacy signals answer everything that the banner would ask.
[[nodiscard]] BannerState bannerState(const StoredValues& stored, const Clock& clock, bool isCoveredBySignals);

// The state as text. `hasDecisions`: a purpose was decided before.
[[nodiscard]] BannerExplanation explainBanner(const StoredValues& stored, const Clock& clock, bool hasConfiguration,
                                              bool isCoveredBySignals, bool hasDecisions);

}  // namespace quillon
