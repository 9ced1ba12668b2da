// Which banner and which location rules of a configuration apply to a user.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "quillon/MainConfiguration.h"

namespace quillon {

// The banner for a location such as "US#CA": the configuration's entry for it, else for its country, else "default";
// where these lead nowhere the category "default", else the first. Null when the configuration has no banner. Owned by
// the configuration.
[[nodiscard]] const BannerConfig* selectBanner(const MainConfiguration& configuration,
                                               const std::optional<std::string>& location);

// Whether knowing the location could change anything.
[[nodiscard]] bool dependsOnLocation(const MainConfiguration& configuration);

// The months of an interval text: a count, one blank and "month" or "year" in any case; nothing when it is not that.
[[nodiscard]] std::optional<std::int64_t> bannerIntervalMonths(std::string_view text) noexcept;

// What holds when a banner has no interval, and when its text cannot be read.
inline constexpr std::string_view defaultBannerInterval = "12 month";
inline constexpr std::int64_t defaultBannerMonths = 12;

}  // namespace quillon
