#include "core/Persistance/UserDefaults/StoredValues.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "core/Persistance/UserDefaults/StoreKeys.h"

namespace quillon {

namespace {

// The subject of a store key; nullopt for an SDK key or any other.
std::optional<DecisionSubject> subjectUnder(std::string_view name) {
  if (!key::isPurpose(name)) {
    if (key::isReserved(name)) return std::nullopt;
    return DecisionSubject{.permission = VantariKey(std::string(name))};
  }
  std::int64_t purpose = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), purpose);
  if (error != std::errc() || end != name.data() + name.size()) return std::nullopt;
  return DecisionSubject{.purposeId = purpose};
}

}  // namespace

PurposeKey::PurposeKey(std::int64_t purposeId) noexcept
    : length_(static_cast<std::size_t>(std::to_chars(text_, text_ + sizeof text_, purposeId).ptr - text_)) {}

std::optional<std::string> StoredValues::string(std::string_view key) const {
  const auto* text = find<std::string>(key);
  return text ? std::optional(*text) : std::nullopt;
}

std::string StoredValues::string(std::string_view key, std::string_view fallback) const {
  const auto* text = find<std::string>(key);
  return text ? *text : std::string(fallback);
}

bool StoredValues::boolean(std::string_view key) const {
  const auto* flag = find<bool>(key);
  return flag && *flag;
}

std::int64_t StoredValues::integer(std::string_view key, std::int64_t fallback) const {
  const auto* number = find<std::int64_t>(key);
  return number ? *number : fallback;
}

std::optional<PropertyDate> StoredValues::date(std::string_view key) const {
  const auto* time = find<PropertyDate>(key);
  return time ? std::optional(*time) : std::nullopt;
}

std::vector<std::int64_t> StoredValues::numbers(std::string_view key) const {
  const auto* list = find<std::vector<std::int64_t>>(key);
  return list ? *list : std::vector<std::int64_t>();
}

std::optional<ConsentStatus> StoredValues::consent(std::string_view key) const {
  const auto* text = find<std::string>(key);
  return text ? fromRawValue<ConsentStatus>(*text) : std::nullopt;
}

std::map<DecisionSubject, ConsentStatus> StoredValues::consents() const {
  std::map<DecisionSubject, ConsentStatus> consents;
  for (const auto& [name, value] : entries_) {
    const auto* text = std::get_if<std::string>(&value);
    const auto status = text ? fromRawValue<ConsentStatus>(*text) : std::nullopt;
    if (!status) continue;
    if (auto subject = subjectUnder(name)) consents.emplace(std::move(*subject), *status);
  }
  return consents;
}

ComplianceType StoredValues::complianceType() const {
  const auto* text = find<std::string>(key::currentComplianceType);
  return (text ? fromRawValue<ComplianceType>(*text) : std::nullopt).value_or(ComplianceType::noticeOnly);
}

ConsentStatus StoredValues::complianceDefault() const {
  const bool asks = complianceType() == ComplianceType::optIn || boolean(key::lostEntries);
  return asks ? ConsentStatus::declined : ConsentStatus::granted;
}

GivenType StoredValues::consentGivenType() const {
  const auto* text = find<std::string>(key::consentGivenType);
  return (text ? fromRawValue<GivenType>(*text) : std::nullopt).value_or(GivenType::noAction);
}

bool StoredValues::isBoundToTracking(std::int64_t purposeId) const {
  const auto* list = find<std::vector<std::int64_t>>(key::trackingPurposesList);
  return list && std::ranges::find(*list, purposeId) != list->end();
}

// This version writes sorted lists; in an unsorted one some purposes may not be found.
bool StoredValues::isAnswered(std::int64_t purposeId) const {
  const auto* list = find<std::vector<std::int64_t>>(key::answeredPurposesList);
  return list && std::ranges::binary_search(*list, purposeId);
}

bool StoredValues::isDecidedBySignal(std::int64_t purposeId) const {
  const auto* list = find<std::vector<std::int64_t>>(key::signalPurposesList);
  return list && std::ranges::binary_search(*list, purposeId);
}

std::vector<std::int64_t> StoredValues::decidedBySignal() const {
  return numbers(key::signalPurposesList);
}

bool StoredValues::isDecidedOnlyBy(std::string_view applicationId) const {
  const auto* list = find<std::vector<std::string>>(key::decidedApplicationsList);
  return !list || std::ranges::all_of(*list, [&](const std::string& decided) { return decided == applicationId; });
}

bool StoredValues::isAnythingPending() const {
  if (boolean(key::uploadConsentRequestPending)) return true;
  const auto* purposes = find<std::vector<std::int64_t>>(key::pendingPurposesList);
  const auto* permissions = find<std::vector<std::string>>(key::pendingPermissionsList);
  return (purposes && !purposes->empty()) || (permissions && !permissions->empty());
}

std::vector<std::int64_t> StoredValues::pendingPurposes() const {
  return numbers(key::pendingPurposesList);
}

std::vector<std::string> StoredValues::pendingPermissions() const {
  const auto* list = find<std::vector<std::string>>(key::pendingPermissionsList);
  return list ? *list : std::vector<std::string>();
}

}  // namespace quillon
