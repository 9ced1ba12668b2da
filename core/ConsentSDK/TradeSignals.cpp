#include "core/ConsentSDK/TradeSignals.h"

#include <limits>

#include "core/Purposes/PurposeTerms.h"

namespace quillon {
namespace {

// When the newest of the decisions on purposes was made; the first page of the history has it in all but odd cases, and
// then an earlier time does no harm.
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
  const auto inForce = s_.loader.inForce();
  for (const Purpose& purpose : *configuration->purposes) {
    if (!purpose.purposeId) continue;
    const std::int64_t id = *purpose.purposeId;
    auto& told = state.purposes.emplace_back();
    told.id = id;
    told.isGranted = isPurposeAllowed(id, stored, inForce ? &inForce->terms : nullptr, *s_.platform.tracking, optOuts);
    told.isExplicit = stored.isAnswered(id);
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
