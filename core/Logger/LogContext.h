// The context lines of a log block, and its destination.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "quillon/LogLevel.h"

namespace quillon {

// Thread-safe. Must outlive the logger.
class LogContext {
 public:
  virtual ~LogContext() = default;

  // Writes a block, already free of terminal control sequences.
  virtual void write(std::string_view block) = 0;
  // See Console.
  virtual bool take(LogLevel level, std::string_view text, std::string_view unit) = 0;
  // "yyyy-MM-dd HH:mm:ss.SSS" in the device's time zone.
  virtual std::string time() = 0;
  virtual std::int64_t configurationVersion() = 0;

  // Called at threshold debug only.
  virtual std::optional<std::string> sdkVersion() = 0;
  // nullopt unless the configuration handles app tracking.
  virtual std::optional<std::string> advertisingIdentifier() = 0;
  // Creates one if there is none.
  virtual std::string subjectId() = 0;
};

}  // namespace quillon
