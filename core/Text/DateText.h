// Dates for people to read.
#pragma once

#include <cstdint>
#include <string>

namespace quillon {

// The day of a time in whole seconds since 1970, such as "2023-11-14", of UTC; the seconds where the calendar ends.
[[nodiscard]] std::string dateText(std::int64_t time);

}  // namespace quillon
