// Human-readable dates.
#pragma once

#include <cstdint>
#include <string>

namespace quillon {

// The UTC day of a time in seconds since 1970, such as "2023-11-14"; the number of seconds outside the years 0 to 9999.
[[nodiscard]] std::string dateText(std::int64_t time);

}  // namespace quillon
