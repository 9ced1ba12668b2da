/// @file
/// Severity of a log message, and the logger's threshold.
#pragma once

#include <string_view>

#include "quillon/RawValue.h"

namespace quillon {

/// Ordered: debug < info < warning < error. The raw values are "DEBUG", "INFO", "WARNING" and "ERROR".
enum class LogLevel { debug, info, warning, error };

/// The text of @p level as it appears in log blocks.
[[nodiscard]] std::string_view rawValue(LogLevel value) noexcept;

}  // namespace quillon
