/// @file
/// Severity of a log message, and the logger's threshold.
#pragma once

#include <string_view>

#include "quillon/RawValue.h"

namespace quillon {

/// Ordered: debug < info < warning < error < off. The raw values are "DEBUG", "INFO", "WARNING", "ERROR" and "OFF".
enum class LogLevel {
  debug,
  info,
  warning,
  error,
  off,  ///< as a threshold: nothing is logged. No message has this level.
};

/// The text of @p level as it appears in log blocks.
[[nodiscard]] std::string_view rawValue(LogLevel value) noexcept;

}  // namespace quillon
