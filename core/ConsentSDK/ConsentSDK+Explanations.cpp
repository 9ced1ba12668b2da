// Why things are as they are, in words.
#include <algorithm>
#include <limits>

#include "core/Banner/BannerState.h"
#include "core/ConsentSDK/Asynchronous.h"
#include "core/ConsentSDK/ConsentSDKCore.h"
#include "core/Json/RawValues.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"

namespace quillon {
namespace {

constexpr RawValue<BannerReason> kBannerReasons[] = {
    {BannerReason::neverShown, "never_shown"}, {BannerReason::unanswered, "unanswered"},
    {BannerReason::reconsent, "reconsent"},    {BannerReason::intervalOver, "interval_over"},
    {BannerReason::onScreen, "on_screen"},     {BannerReason::answered, "answered"},
};

// Such as "2023-11-14"; seconds since 1970 where the calendar ends.
std::string dateText(std::int64_t time) {
  constexpr std::int64_t yearZero = -62'167'219'200;
  constexpr std::int64_t yearTenThousand = 253'402'300'800;
  if (time < yearZero || time >= yearTenThousand) return "second " + std::to_string(time);
  const std::chrono::year_month_day day(
      std::chrono::floor<std::chrono::days>(std::chrono::sys_seconds(std::chrono::seconds(time))));
  const auto digits = [](unsigned number, std::size_t width) {
    std::string text = std::to_string(number);
    return std::string(width - std::min(width, text.size()), '0') + text;
  };
  return digits(static_cast<unsigned>(int{day.year()}), 4) + "-" + digits(unsigned{day.month()}, 2) + "-" +
         digits(unsigned{day.day()}, 2);
}

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
  }
  return {};
}

std::string sentence(const ConsentExplanation& consent, ComplianceType type) {
  const std::string status(rawValue(consent.status));
  if (!consent.cause) return "It is stored as " + status + ", and the history does not tell how that came about.";
  if (!consent.time) {
    return "Nothing was decided: " + status + " is the default of the compliance type " + std::string(rawValue(type)) +
           ".";
  }
  const std::string on = " on " + dateText(*consent.time) + ".";
  switch (*consent.cause) {
    case DecisionCause::user:
      return "The user decided it: " + status + on;
    case DecisionCause::byDefault:
      return "The default of the compliance type was recorded: " + status + on;
    case DecisionCause::essential:
      return "The purpose is essential: " + status + on;
    case DecisionCause::trackingStatus:
      return "It follows the tracking status of the device: " + status + on;
    case DecisionCause::device:
      return "The device decided it: " + status + on;
  }
  return {};
}

template <class Core>
std::optional<Decision> newestDecision(const Core& core, std::int64_t purposeId) {
  constexpr std::size_t pageSize = 500;
  std::optional<std::int64_t> before = std::numeric_limits<std::int64_t>::max();
  while (before) {
    const HistoryPage page = core.store.history(*before, pageSize);
    const auto found =
        std::ranges::find(page.entries, purposeId, [](const HistoryEntry& entry) { return entry.decision.purposeId; });
    if (found != page.entries.end()) return found->decision;
    before = page.before;
  }
  return std::nullopt;
}

template <class Core>
auto consentExplanation(const std::shared_ptr<Core>& core, std::int64_t purposeId) {
  return [core, purposeId]() -> Task<ConsentExplanation> {
    const auto entries = core->store.snapshot();
    const StoredValues stored(*entries);
    ConsentExplanation explanation;
    explanation.status = stored.consentOrDefault(PurposeKey(purposeId));
    explanation.cause = DecisionCause::byDefault;
    if (stored.consent(PurposeKey(purposeId))) {
      const auto decision = newestDecision(*core, purposeId);
      const bool isTold = decision && decision->to == explanation.status;
      explanation.cause = isTold ? std::optional(decision->cause) : std::nullopt;
      explanation.time = isTold ? std::optional(decision->time) : std::nullopt;
    }
    explanation.text = sentence(explanation, stored.complianceType());
    co_return explanation;
  };
}

}  // namespace

std::string_view rawValue(BannerReason reason) noexcept {
  return textOf<BannerReason>(kBannerReasons, reason);
}
template <>
std::optional<BannerReason> fromRawValue(std::string_view text) noexcept {
  return caseOf<BannerReason>(kBannerReasons, text);
}

BannerExplanation ConsentSDK::Core::explainBanner() {
  const auto entries = store.snapshot();
  const StoredValues stored(*entries);
  const BannerState state = bannerState(stored, *platform.clock);
  BannerExplanation banner{.isDue = state.isDue(), .reason = state.reason};
  const bool isDated = state.reason == BannerReason::answered || state.reason == BannerReason::intervalOver;
  if (isDated) banner.expires = state.expires;
  const auto configuration = cache.current();
  if (state.reason == BannerReason::unanswered && configuration && purposes(configuration).hasDecisions(stored)) {
    banner.reason = BannerReason::reconsent;
    banner.version = stored.integer(key::configurationVersion, 0);
  }
  banner.text = sentence(banner, stored.integer(key::bannerShownDate, 0));
  return banner;
}

BannerExplanation ConsentSDK::explainBanner() const {
  return core_->explainBanner();
}

void ConsentSDK::explain(std::int64_t purposeId, std::function<void(ConsentExplanation)> callback) {
  Asynchronous<ConsentExplanation>::callback(core_, std::move(callback), consentExplanation(core_, purposeId));
}

std::future<ConsentExplanation> ConsentSDK::explain(std::int64_t purposeId) {
  return Asynchronous<ConsentExplanation>::future(core_, consentExplanation(core_, purposeId));
}

}  // namespace quillon
