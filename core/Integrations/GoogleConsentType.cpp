#include "quillon/GoogleConsentType.h"

#include "core/Json/RawValues.h"

namespace quillon {

QUILLON_RAW_VALUES(GoogleConsentType, {GoogleConsentType::analyticsStorage, "analytics_storage"},
                   {GoogleConsentType::adStorage, "ad_storage"}, {GoogleConsentType::adUserData, "ad_user_data"},
                   {GoogleConsentType::adPersonalization, "ad_personalization"});

}  // namespace quillon
