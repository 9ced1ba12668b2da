#include "core/Json/WholeNumber.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <memory>
#include <string>

namespace quillon::json {

std::optional<std::int64_t> wholeNumber(std::string_view number) {
  constexpr std::int64_t kLargest = std::int64_t{1} << 53;
  // No document has room for enough digits to cancel a larger exponent.
  constexpr std::int64_t kLargestExponent = std::int64_t{32} << 20;
  const bool negative = number.starts_with('-');
  if (negative) number.remove_prefix(1);
  const std::size_t exponentAt = std::min(number.find_first_of("eE"), number.size());
  std::string_view exponentText = number.substr(std::min(exponentAt + 1, number.size()));
  if (exponentText.starts_with('+')) exponentText.remove_prefix(1);
  const std::string_view mantissa = number.substr(0, exponentAt);

  // The value is `digits` with the decimal point after the first `wholeDigits` of them.
  std::string digits(mantissa);
  const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
  if (point < digits.size()) digits.erase(point, 1);
  if (digits.find_first_not_of('0') == std::string::npos) return 0;
  std::int64_t exponent = 0;
  if (std::from_chars(std::to_address(exponentText.begin()), std::to_address(exponentText.end()), exponent).ec ==
      std::errc::result_out_of_range)
    return std::nullopt;
  if (std::abs(exponent) > kLargestExponent) return std::nullopt;
  const std::int64_t wholeDigits = static_cast<std::int64_t>(point) + exponent;

  std::int64_t value = 0;
  for (std::int64_t i = 0; i < std::max(wholeDigits, static_cast<std::int64_t>(digits.size())); ++i) {
    const int digit = i < static_cast<std::int64_t>(digits.size()) ? digits[static_cast<std::size_t>(i)] - '0' : 0;
    if (i < wholeDigits) {
      value = value * 10 + digit;
      if (value > kLargest) return std::nullopt;
    } else if (digit != 0) {
      return std::nullopt;
    }
  }
  return negative ? -value : value;
}

}  // namespace quillon::json
