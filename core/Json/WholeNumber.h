// Whole numbers that a document writes with a fraction or an exponent, such as 1.0 and 1e3.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace quillon::json {

/// The value of @p number, as JSON spells numbers, when it is a whole number of at most 2^53. Works on the digits: as a
/// double, 0.99999999999999999999 would be one.
[[nodiscard]] std::optional<std::int64_t> wholeNumber(std::string_view number);

}  // namespace quillon::json
