// The English explanation of the banner's state.
#include "core/Banner/BannerState.h"
#include "core/Json/RawValues.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Text/DateText.h"

namespace quillon {
namespace {

std::string sentence(const BannerExplanation& banner, std::int64_t shown) {
  switch (banner.reason) {
    case BannerReason::neverShown:
      return "The banner is due: it was never shown.";
    case BannerReason::unanswered:
      return "The banner is due: it was shown on " + dateText(shown) + " and not answered.";
    case BannerReason::reconsent:
      return "The banner is due: version " + std::to_string(banner.version.value_or(0)) +
             " of the configuration asks for the consents again.";
    case BannerReason::intervalOver:
      return "The banner is due: its answer expired on " + dateText(banner.expires.value_or(0)) + ".";
    case BannerReason::onScreen:
      return "The banner is not due: it is on screen.";
    case BannerReason::answered:
      return "The banner is not due: it is answered until " + dateText(banner.expires.value_or(0)) + ".";
    case BannerReason::signal:
      return "The banner is not due: a privacy signal is honoured and settles all that it would ask.";
    case BannerReason::noConfiguration:
      return "The banner is not due: no configuration is known yet.";
  }
  return {};
}

}  // namespace

QUILLON_RAW_VALUES(BannerReason, {BannerReason::neverShown, "never_shown"}, {BannerReason::unanswered, "unanswered"},
                   {BannerReason::reconsent, "reconsent"}, {BannerReason::intervalOver, "interval_over"},
                   {BannerReason::onScreen, "on_screen"}, {BannerReason::answered, "answered"},
                   {BannerReason::signal, "signal"}, {BannerReason::noConfiguration, "no_configuration"});

BannerExplanation explainBanner(const StoredValues& stored, const Clock& clock, bool hasConfiguration,
                                bool isCoveredBySignals, bool hasDecisions) {
  const BannerState state = bannerState(stored, clock, isCoveredBySignals);
  BannerExplanation banner{.isDue = hasConfiguration && state.isDue(), .reason = state.reason};
  if (!hasConfiguration && state.isDue()) {
    banner.reason = BannerReason::noConfiguration;
  } else if (state.reason == BannerReason::answered || state.reason == BannerReason::intervalOver) {
    banner.expires = state.expires;
  } else if (state.reason == BannerReason::unanswered && hasDecisions) {
    banner.reason = BannerReason::reconsent;
    banner.version = stored.integer(key::configurationVersion, 0);
  }
  banner.text = sentence(banner, stored.integer(key::bannerShownDate, 0));
  return banner;
}

}  // namespace quillon
