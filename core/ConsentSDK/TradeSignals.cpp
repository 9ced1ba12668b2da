#include "core/ConsentSDK/TradeSignals.h"

#include <limits>

#include "core/Purposes/PurposeTerms.h"

namespace quillon {
namespace {

// The time of the newest decision on a purpose; zero when the newest 100 entries have none, which is rare and harmless.
std::chrono::sys_seconds newestDecision(const UserDefaultManager& store) {
  constexpr std::size_t pageSize = 100;
  for (const auto& entry : store.history(std::numeric_limits<std::int64_t>::max(), pageSize).entries) {
    if (entry.decision.purposeId) return std::chrono::sys_seconds(std::chrono::seconds(entry.decision.time));
  }
  return {};
}

}  // namespace

SignalState TradeSignals::state() {
  const auto session = s_.sessions.current();
  const auto entries = s_.store.snapshot();
  const StoredValues stored(*entries);
  const OptOuts optOuts = s_.signal.optOuts();
  SignalState state;
  state.isDisclosed = stored.consentGivenType() != GivenType::noAction;
  state.decidedAt = newestDecision(s_.store);
  state.language = s_.sessions.language();
  if (!session) return state;
  state.place = s_.location.known(session);
  if (session->options.privacySignal) state.globalPrivacyControl = optOuts.isSignalOn();
  const auto configuration = s_.loader.current();
  if (!configuration || !configuration->purposes) return state;
  std::vector<std::int64_t> ids;
  for (const Purpose& purpose : *configuration->purposes) {
    if (purpose.purposeId) ids.push_back(*purpose.purposeId);
  }
  const auto consents = s_.store.consents().purposes(ids);
  auto next = consents.begin();
  for (const Purpose& purpose : *configuration->purposes) {
    if (!purpose.purposeId) continue;
    const PurposeState& consent = *next++;
    auto& told = state.purposes.emplace_back();
    told.id = *purpose.purposeId;
    told.isGranted = isPurposeAllowed(consent, *s_.platform.tracking, s_.platform.signals.get());
    told.isExplicit = consent.isAnswered();
    for (const SDK& sdk : purpose.sdks.value_or(std::vector<SDK>())) {
      if (sdk.sdkId) told.sdkIds.push_back(*sdk.sdkId);
    }
  }
  return state;
}

std::shared_ptr<void> TradeSignals::followChanges(std::function<void()> changed) {
  const auto shared = std::make_shared<std::function<void()>>(std::move(changed));
  return s_.events.gates.followers.add(s_.work.whileAlive([this, shared] { s_.work.run([shared] { (*shared)(); }); }));
}

}  // namespace quillon
