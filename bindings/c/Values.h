// Conversions between the values of C and C++. The C functions have no logic beyond them.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "core/Text/LocalizedTexts.h"
#include "platform/ScreenServices.h"
#include "quillon/ConsentSDK.h"
#include "quillon/consent.h"

namespace quillon::c {

// Runs the call; returns the empty result when it throws, which only happens out of memory.
template <class Call>
auto guarded(Call&& call) noexcept -> decltype(call()) {
  using Result = decltype(call());
  try {
    return call();
  } catch (...) {
    if constexpr (!std::is_void_v<Result>) return Result();
  }
}

inline std::string text(const char* given) {
  return given == nullptr ? std::string() : std::string(given);
}
inline std::optional<std::string> optionalText(const char* given) {
  return given == nullptr ? std::nullopt : std::optional<std::string>(given);
}

inline quillon_consent inC(ConsentStatus status) {
  switch (status) {
    case ConsentStatus::granted:
      return QUILLON_GRANTED;
    case ConsentStatus::declined:
      return QUILLON_DECLINED;
    case ConsentStatus::withDrawn:
      return QUILLON_WITHDRAWN;
    case ConsentStatus::notDetermined:
      break;
  }
  return QUILLON_NOT_DETERMINED;
}

inline quillon_compliance inC(const std::optional<ComplianceType>& type) {
  if (!type) return QUILLON_COMPLIANCE_NONE;
  return *type == ComplianceType::noticeOnly ? QUILLON_NOTICE_ONLY
         : *type == ComplianceType::optIn    ? QUILLON_OPT_IN
                                             : QUILLON_OPT_OUT;
}

inline ConsentSDK& sdk() {
  return ConsentSDK::shared();
}

inline std::string inUsersLanguage(const std::optional<LocalizedText>& texts) {
  return texts ? textIn(sdk().screens()->language(), *texts) : std::string();
}

// The text of an enumerator: a literal, so it ends in a zero.
template <class Enumeration>
const char* word(Enumeration value) noexcept {
  return rawValue(value).data();  // NOLINT(bugprone-suspicious-stringview-data-usage)
}

// Valid as long as the decision.
inline quillon_decision inC(const Decision& decision) {
  return {.number = 0,
          .time = decision.time,
          .purpose_id = decision.purposeId.value_or(0),
          .permission = decision.permission ? decision.permission->rawValue().c_str() : nullptr,
          .from = inC(decision.from.value_or(ConsentStatus::notDetermined)),
          .to = inC(decision.to),
          .cause = word(decision.cause),
          .given_type = word(decision.givenType),
          .configuration_version = decision.configurationVersion,
          .compliance = inC(std::optional(decision.complianceType)),
          .language = decision.language.c_str(),
          .upload = nullptr,
          .notice = decision.notice ? decision.notice->c_str() : nullptr,
          .link = nullptr,
          .hash = nullptr};
}

// Valid as long as the explanation.
inline quillon_banner_explanation inC(const BannerExplanation& explanation) {
  return {.is_due = explanation.isDue ? 1 : 0,
          .reason = word(explanation.reason),
          .expires = explanation.expires.value_or(0),
          .version = explanation.version.value_or(0),
          .text = explanation.text.c_str()};
}

// Passes extensible structures by pointer: growing them would change an array's stride.
template <class Record>
std::vector<const Record*> addresses(const std::vector<Record>& records) {
  std::vector<const Record*> all;
  all.reserve(records.size());
  for (const Record& record : records) all.push_back(&record);
  return all;
}

inline std::vector<quillon_signal> signalsOf(const std::map<std::string, std::string>& values) {
  std::vector<quillon_signal> signals;
  signals.reserve(values.size());
  for (const auto& [name, value] : values) signals.push_back({name.c_str(), value.c_str()});
  return signals;
}

// Passes a boolean to the callback, if there is one.
inline std::function<void(bool)> answering(void (*callback)(int32_t, void*), void* context) {
  return [=](bool yes) {
    if (callback != nullptr) callback(yes ? 1 : 0, context);
  };
}

}  // namespace quillon::c
