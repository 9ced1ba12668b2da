// Which controls a banner has.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "quillon/BannerConfig.h"

namespace quillon {

enum class BannerAction { accept, reject, close, openPreferenceCenter, openPrivacyNotice, openDSRPortal };

struct BannerButtons {
  std::vector<BannerAction> answers;  // the row of equal buttons, in order
  std::vector<BannerAction> links;    // below it, in order
  bool close;

  bool operator==(const BannerButtons&) const = default;
};

// A banner that could not be left otherwise keeps its close button, whatever the configuration says.
[[nodiscard]] BannerButtons buttonsByComplianceType(const BannerConfig& banner);

// What stands on a control: the configured text in the language, else a label; never empty.
[[nodiscard]] std::string textOn(BannerAction action, const std::optional<BannerConfig>& banner,
                                 std::string_view language, std::string_view labelLanguage);

}  // namespace quillon
