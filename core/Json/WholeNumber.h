// Whole numbers written with a fraction or exponent, such as 1.0 and 1e3.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace quillon::json {

/// The value of the JSON number @p number when it is whole and at most 2^53. Works on the digits: as a double,
/// 0.99999999999999999999 would be 1.
[[nodiscard]] std::optional<std::int64_t> wholeNumber(std::string_view number);

}  // namespace quillon::json
