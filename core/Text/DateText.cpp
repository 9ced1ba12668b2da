#include "core/Text/DateText.h"

#include <algorithm>
#include <chrono>

namespace quillon {

std::string dateText(std::int64_t time) {
  constexpr std::int64_t yearZero = -62'167'219'200;
  constexpr std::int64_t yearTenThousand = 253'402'300'800;
  if (time < yearZero || time >= yearTenThousand) return "second " + std::to_string(time);
  const std::chrono::year_month_day day(
      std::chrono::floor<std::chrono::days>(std::chrono::sys_seconds(std::chrono::seconds(time))));
  const auto digits = [](unsigned number, std::size_t width) {
    std::string text = std::to_string(number);
    return std::string(width - std::min(width, text.size()), '0') + text;
  };
  return digits(static_cast<unsigned>(int{day.year()}), 4) + "-" + digits(unsigned{day.month()}, 2) + "-" +
         digits(unsigned{day.day()}, 2);
}

}  // namespace quillon
