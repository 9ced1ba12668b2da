#include "core/ConsentSDK/Questions.h"

#include <algorithm>
#include <limits>

#include "core/Integrations/ConsentScript.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Text/DateText.h"
#include "core/Text/LocalizedTexts.h"

namespace quillon {
namespace {

// `type` is nullopt while no configuration is known.
std::string sentence(const ConsentExplanation& consent, std::optional<ComplianceType> type) {
  const std::string status(rawValue(consent.status));
  if (!consent.cause) return "It is stored as " + status + ", and the history does not tell how that came about.";
  if (!consent.time) {
    return type ? "Nothing was decided: " + status + " is the default of the compliance type " +
                      std::string(rawValue(*type)) + "."
                : "Nothing was decided, and no configuration is known yet.";
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
    case DecisionCause::signal:
      return "A privacy signal is honoured: " + status + on;
    case DecisionCause::removed:
      return "It was removed" + on;
  }
  return {};
}

}  // namespace

ConsentStatus Questions::permissionStatus(const VantariKey& permission) const {
  const PermissionState state = s_.store.consents().permission(permission.rawValue());
  const bool isListed = state.isListed ? *state.isListed : s_.loader.permissions(s_.loader.current()).lists(permission);
  const auto known = isListed ? s_.loader.permissions(nullptr).knownConsent(permission) : std::nullopt;
  return known ? *known : state.stored.value_or(ConsentStatus::notDetermined);
}

bool Questions::isPermissionAllowed(const VantariKey& permission) const {
  return s_.loader.permissions(nullptr).knownConsent(permission) == ConsentStatus::granted;
}

std::vector<Purpose> Questions::purposes() const {
  return s_.loader.purposes(s_.loader.current()).purposesWithConsents();
}

std::vector<AppPermission> Questions::permissions() const {
  return s_.loader.permissions(s_.loader.current()).permissionsWithConsents();
}

ConsentStatus Questions::livePermission(const VantariKey& permission) const {
  const auto permissions = s_.loader.permissions(s_.loader.current());
  return permissions.lists(permission) ? permissions.getConsentByPermission(permission) : ConsentStatus::notDetermined;
}

Task<const DefaultMapping*> Questions::mappingFor(ConfigurationPointer configuration) {
  if (!configuration || !configuration->isGcmEnabled.value_or(false) || !configuration->gcmConfig) co_return nullptr;
  const auto location = co_await s_.location.locationFor(s_.sessions.current(), configuration);
  co_return consentModeMapping(*configuration->gcmConfig, location);
}

Task<Questions::Signals> Questions::consentModeSignals() {
  const auto configuration = s_.loader.current();
  const auto* mapping = co_await mappingFor(configuration);
  Signals signals;
  if (!mapping) co_return signals;
  for (const auto& [type, granted] : consentMap(*mapping, StoredValues(*s_.store.snapshot()), s_.loader.optOuts())) {
    signals.emplace(type, granted ? ConsentStatus::granted : ConsentStatus::declined);
  }
  co_return signals;
}

Task<std::string> Questions::consentScript() {
  PageConsents consents;
  std::optional<PageSignals> signals;
  const auto configuration = s_.loader.current();
  if (!configuration) co_return withTradeSignals(quillon::consentScript(consents, signals));
  const std::string language = s_.sessions.language();
  for (const Purpose& purpose : s_.loader.purposes(configuration).purposesWithConsents()) {
    if (!purpose.purposeId) continue;
    consents.purposes.push_back({*purpose.purposeId, textIn(language, purpose.purposeName.value_or(LocalizedText())),
                                 purpose.consentStatus.value_or(ConsentStatus::notDetermined)});
  }
  for (const auto& [permission, status] : s_.loader.permissions(configuration).liveStatuses()) {
    consents.permissions.push_back({permission, status});
  }
  if (const auto* mapping = co_await mappingFor(configuration)) {
    const auto entries = s_.store.snapshot();
    const StoredValues stored(*entries);
    SuiteEntries undecided;
    if (const auto type = stored.string(key::currentComplianceType)) {
      undecided.emplace(key::currentComplianceType, *type);
    }
    const OptOuts optOuts = s_.loader.optOuts();
    signals.emplace(consentMap(*mapping, StoredValues(undecided), optOuts), consentMap(*mapping, stored, optOuts));
  }
  co_return withTradeSignals(quillon::consentScript(consents, signals));
}

std::string Questions::withTradeSignals(std::string script) const {
  s_.tradeSignals.complete(script);
  return script;
}

ConsentExplanation Questions::explain(std::int64_t purposeId) const {
  const auto entries = s_.store.snapshot();
  const StoredValues stored(*entries);
  ConsentExplanation explanation;
  explanation.status = stored.consentOrDefault(PurposeKey(purposeId));
  explanation.cause = DecisionCause::byDefault;
  if (stored.consent(PurposeKey(purposeId))) {
    const auto decision = newestDecision(purposeId);
    const bool isTold = decision && decision->to == explanation.status;
    explanation.cause = isTold ? std::optional(decision->cause) : std::nullopt;
    explanation.time = isTold ? std::optional(decision->time) : std::nullopt;
  }
  const bool isTypeKnown = stored.string(key::currentComplianceType).has_value();
  explanation.text = sentence(explanation, isTypeKnown ? std::optional(stored.complianceType()) : std::nullopt);
  return explanation;
}

std::optional<Decision> Questions::newestDecision(std::int64_t purposeId) const {
  constexpr std::size_t pageSize = 500;
  std::optional<std::int64_t> before = std::numeric_limits<std::int64_t>::max();
  while (before) {
    const HistoryPage page = s_.store.history(*before, pageSize);
    const auto found =
        std::ranges::find(page.entries, purposeId, [](const HistoryEntry& entry) { return entry.decision.purposeId; });
    if (found != page.entries.end()) return found->decision;
    before = page.before;
  }
  return std::nullopt;
}

}  // namespace quillon
