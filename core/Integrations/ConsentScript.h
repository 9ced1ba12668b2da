// The consents as a script for pages in the host's own web view.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/Integrations/GoogleConsentModeHelper.h"

namespace quillon {

// The data passed to a page.
struct PageConsents {
  struct OfPurpose {
    std::int64_t id = 0;
    std::string name;
    ConsentStatus status = ConsentStatus::notDetermined;
  };
  struct OfPermission {
    VantariKey permission = VantariKey(std::string());
    ConsentStatus status = ConsentStatus::notDetermined;
  };
  std::vector<OfPurpose> purposes;
  std::vector<OfPermission> permissions;
};

// The signals before any decision, and the current ones.
struct PageSignals {
  ConsentMap byDefault;
  ConsentMap present;
};

// Script text, safe inside a script element whatever the texts contain. Without signals it omits consent mode.
[[nodiscard]] std::string consentScript(const PageConsents& consents, const std::optional<PageSignals>& signals);

}  // namespace quillon
