// The consents for pages that the host shows in a web view of its own.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/Integrations/GoogleConsentModeHelper.h"

namespace quillon {

// What a page is told.
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

// The signals before any decision, and now.
struct PageSignals {
  ConsentMap byDefault;
  ConsentMap present;
};

// A script without its element, safe to stand in one whatever the texts are. Without signals it has no consent mode.
[[nodiscard]] std::string consentScript(const PageConsents& consents, const std::optional<PageSignals>& signals);

}  // namespace quillon
