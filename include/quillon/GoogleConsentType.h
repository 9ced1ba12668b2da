/// @file
/// The signals of Google Consent Mode.
#pragma once

#include <string_view>

#include "quillon/RawValue.h"

namespace quillon {

/// A consent-mode signal of analytics libraries.
enum class GoogleConsentType {
  analyticsStorage,   ///< "analytics_storage"
  adStorage,          ///< "ad_storage"
  adUserData,         ///< "ad_user_data"
  adPersonalization,  ///< "ad_personalization"
};

/// The name of @p type in analytics libraries.
[[nodiscard]] std::string_view rawValue(GoogleConsentType value) noexcept;

}  // namespace quillon
