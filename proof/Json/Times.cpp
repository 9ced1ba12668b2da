#include "proof/Json/Times.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>

namespace quillon::proof {
namespace {

using namespace std::chrono;

constexpr std::int64_t earliest = -62'167'219'200;  // 0000-01-01T00:00:00Z
constexpr std::int64_t latest = 253'402'300'799;    // 9999-12-31T23:59:59Z

}  // namespace

std::string timeText(std::int64_t time) {
  const sys_seconds point(seconds(std::clamp(time, earliest, latest)));
  const auto day = floor<days>(point);
  const year_month_day date(day);
  const hh_mm_ss clock(point - day);
  std::array<char, 80> text;
  const int length = std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02dZ", int(date.year()),
                                   unsigned(date.month()), unsigned(date.day()), int(clock.hours().count()),
                                   int(clock.minutes().count()), int(clock.seconds().count()));
  return {text.data(), static_cast<std::size_t>(length)};
}

std::optional<std::int64_t> fromTimeText(std::string_view text) {
  constexpr std::string_view form = "0000-00-00T00:00:00Z";
  if (text.size() != form.size()) return std::nullopt;
  const auto number = [&text](std::size_t at, std::size_t length) {
    int value = 0;
    std::from_chars(text.data() + at, text.data() + at + length, value);
    return value;
  };
  const sys_days date = year(number(0, 4)) / month(unsigned(number(5, 2))) / day(unsigned(number(8, 2)));
  const std::int64_t time =
      (date.time_since_epoch() + hours(number(11, 2)) + minutes(number(14, 2))) / seconds(1) + number(17, 2);
  // Invalid input does not survive the round trip.
  if (timeText(time) != text) return std::nullopt;
  return time;
}

}  // namespace quillon::proof
