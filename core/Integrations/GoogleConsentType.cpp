#include "quillon/GoogleConsentType.h"

#include "core/Json/RawValues.h"

namespace quillon {
namespace {

constexpr RawValue<GoogleConsentType> kSignals[] = {
    {GoogleConsentType::analyticsStorage, "analytics_storage"},
    {GoogleConsentType::adStorage, "ad_storage"},
    {GoogleConsentType::adUserData, "ad_user_data"},
    {GoogleConsentType::adPersonalization, "ad_personalization"},
};

}  // namespace

std::string_view rawValue(GoogleConsentType type) noexcept {
  return textOf<GoogleConsentType>(kSignals, type);
}

template <>
std::optional<GoogleConsentType> fromRawValue(std::string_view text) noexcept {
  return caseOf<GoogleConsentType>(kSignals, text);
}

}  // namespace quillon
