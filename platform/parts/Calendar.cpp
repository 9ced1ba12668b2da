#include "platform/parts/Calendar.h"

#include <time.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <optional>

namespace quillon {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

// Broken-down local time plus milliseconds.
struct LocalTime {
  tm fields;
  milliseconds fraction;
};

LocalTime toLocal(WallTime time, TimeZone zone) {
  // Not chrono::floor, which overflows at the lower limit of WallTime.
  time_t count = std::chrono::duration_cast<seconds>(time.time_since_epoch()).count();
  milliseconds fraction = time.time_since_epoch() - seconds(count);
  if (fraction < milliseconds(0)) {
    fraction += seconds(1);
    --count;
  }
  LocalTime local{{}, fraction};
  if (zone == TimeZone::utc) {
    gmtime_r(&count, &local.fields);
  } else {
    tzset();  // localtime_r alone never re-reads the zone
    localtime_r(&count, &local.fields);
  }
  return local;
}

std::optional<seconds> toUtc(tm fields, TimeZone zone) {
  fields.tm_isdst = -1;
  fields.tm_wday = -1;  // -1 is also a valid result; success sets the weekday
  const time_t count = zone == TimeZone::utc ? timegm(&fields) : mktime(&fields);
  if (count == -1 && fields.tm_wday == -1) return std::nullopt;
  return seconds(count);
}

int lastDay(std::int64_t year, int month) {
  static constexpr std::array<int, 12> days{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return month == 1 && leap ? 29 : days[static_cast<std::size_t>(month)];
}

}  // namespace

WallTime Calendar::addMonths(WallTime time, std::int64_t months) const {
  // WallTime spans less than 600 million years, so a bigger step saturates in any case.
  constexpr std::int64_t farthest = std::int64_t{600'000'000} * 12;
  const WallTime end = months < 0 ? WallTime::min() : WallTime::max();

  LocalTime local = toLocal(time, zone_);
  const std::int64_t total =
      (std::int64_t{local.fields.tm_year} + 1900) * 12 + local.fields.tm_mon + std::clamp(months, -farthest, farthest);
  const std::int64_t month = ((total % 12) + 12) % 12;
  const std::int64_t year = (total - month) / 12;
  local.fields.tm_year = static_cast<int>(year - 1900);
  local.fields.tm_mon = static_cast<int>(month);
  local.fields.tm_mday = std::min(local.fields.tm_mday, lastDay(year, local.fields.tm_mon));

  const auto utc = toUtc(local.fields, zone_);
  constexpr auto first = std::chrono::ceil<seconds>(WallTime::min().time_since_epoch());
  constexpr auto last = std::chrono::floor<seconds>(WallTime::max().time_since_epoch()) - seconds(1);
  if (!utc || *utc < first || *utc > last) return end;
  return WallTime(*utc + local.fraction);
}

std::string Calendar::localText(WallTime time) const {
  const LocalTime local = toLocal(time, zone_);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04lld-%02d-%02d %02d:%02d:%02d.%03d",
                static_cast<long long>(local.fields.tm_year) + 1900, local.fields.tm_mon + 1, local.fields.tm_mday,
                local.fields.tm_hour, local.fields.tm_min, local.fields.tm_sec,
                static_cast<int>(local.fraction.count()));
  return text.data();
}

}  // namespace quillon
