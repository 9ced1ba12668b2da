// The controls of a banner.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "quillon/BannerConfig.h"

namespace quillon {

enum class BannerAction { accept, reject, close, openPreferenceCenter, openPrivacyNotice, openDSRPortal };

struct BannerButtons {
  std::vector<BannerAction> answers;  // row of equally sized buttons, in order
  std::vector<BannerAction> links;    // below the row, in order
  bool close;

  bool operator==(const BannerButtons&) const = default;
};

// A banner that could not be closed otherwise has a close button regardless of the configuration.
[[nodiscard]] BannerButtons buttonsByComplianceType(const BannerConfig& banner);

// The control's text: configured, or else a label; never empty.
[[nodiscard]] std::string textOn(BannerAction action, const std::optional<BannerConfig>& banner,
                                 std::string_view language, std::string_view labelLanguage);

}  // namespace quillon
