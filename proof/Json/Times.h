// Times in ISO 8601, UTC.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillon::proof {

// Seconds since 1970 as "2026-01-31T08:15:00Z"; clamped to the years 0 to 9999.
[[nodiscard]] std::string timeText(std::int64_t time);
[[nodiscard]] std::optional<std::int64_t> fromTimeText(std::string_view text);

}  // namespace quillon::proof
