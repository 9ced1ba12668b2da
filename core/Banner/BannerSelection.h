// Selects a configuration's banner for a location.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "quillon/MainConfiguration.h"

namespace quillon {

// The banner for a location such as "US#CA": the configuration's entry for the location, else for its country, else
// "default"; if these name no category, the category "default", else the first. Null when the configuration has no
// banner. Owned by the configuration.
[[nodiscard]] const BannerConfig* selectBanner(const MainConfiguration& configuration,
                                               const std::optional<std::string>& location);

// Whether the configuration depends on the location.
[[nodiscard]] bool dependsOnLocation(const MainConfiguration& configuration);

// The months of an interval text: a count, one space and "month" or "year", case-insensitive; nullopt for any other
// text.
[[nodiscard]] std::optional<std::int64_t> bannerIntervalMonths(std::string_view text) noexcept;

// The interval for a banner without one, and for an unreadable text.
inline constexpr std::string_view defaultBannerInterval = "12 month";
inline constexpr std::int64_t defaultBannerMonths = 12;

}  // namespace quillon
