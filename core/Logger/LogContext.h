// What a log block tells besides its message, and where blocks go.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillon {

// Thread-safe. Must outlive the logger.
class LogContext {
 public:
  virtual ~LogContext() = default;

  // One block, without what a terminal would obey.
  virtual void write(std::string_view block) = 0;
  // "yyyy-MM-dd HH:mm:ss.SSS" in the device's time zone.
  virtual std::string time() = 0;
  virtual std::int64_t configurationVersion() = 0;

  // Asked at threshold debug only.
  virtual std::optional<std::string> sdkVersion() = 0;
  // Nothing unless the configuration handles app tracking.
  virtual std::optional<std::string> advertisingIdentifier() = 0;
  // Makes one when there is none.
  virtual std::string subjectId() = 0;
};

}  // namespace quillon
