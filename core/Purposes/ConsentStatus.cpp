#include "quillon/ConsentStatus.h"

#include "core/Json/RawValues.h"

namespace quillon {
namespace {

constexpr RawValue<ConsentStatus> kConsentStatuses[] = {
    {ConsentStatus::granted, "granted"},
    {ConsentStatus::declined, "declined"},
    {ConsentStatus::notDetermined, "not_determined"},
    {ConsentStatus::withDrawn, "withdrawn"},
};

}  // namespace

std::string_view rawValue(ConsentStatus status) noexcept {
  return textOf<ConsentStatus>(kConsentStatuses, status);
}

template <>
std::optional<ConsentStatus> fromRawValue(std::string_view text) noexcept {
  return caseOf<ConsentStatus>(kConsentStatuses, text);
}

}  // namespace quillon
