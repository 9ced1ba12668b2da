// Calendar arithmetic and texts of wall times, shared by all clocks.
#pragma once

#include <cstdint>
#include <string>

#include "platform/Clock.h"

namespace quillon {

enum class TimeZone { utc, device };

// Thread-safe. Reads the device's time zone in every call, so that changes are followed.
class Calendar {
 public:
  explicit Calendar(TimeZone zone) : zone_(zone) {}

  // As Clock::addMonths. A local time skipped by daylight saving moves by the length of the gap.
  [[nodiscard]] WallTime addMonths(WallTime time, std::int64_t months) const;
  // As Clock::localText.
  [[nodiscard]] std::string localText(WallTime time) const;

 private:
  TimeZone zone_;
};

}  // namespace quillon
