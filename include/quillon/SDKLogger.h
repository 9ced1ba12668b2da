/// @file
/// The SDK's logger.
#pragma once

#include <atomic>
#include <string>
#include <string_view>

#include "quillon/LogLevel.h"

namespace quillon {

class LogContext;

/// Writes one text block per message at or above its threshold. Applications may log messages of their own.
/// Thread-safe: blocks of different threads are not interleaved.
///
/// @code
/// quillon::SDKLogger::shared().log("Reader opened", quillon::LogLevel::info, __func__, __FILE__, __LINE__);
/// @endcode
class SDKLogger {
 public:
  /// The logger of ConsentSDK::shared(). The threshold is debug until setup() sets it.
  static SDKLogger& shared();

  /// For the SDK itself. Applications use shared() or ConsentSDK::logger().
  explicit SDKLogger(LogContext& context) noexcept : context_(context) {}
  SDKLogger(const SDKLogger&) = delete;
  SDKLogger& operator=(const SDKLogger&) = delete;

  /// The threshold.
  [[nodiscard]] LogLevel logLevel() const noexcept { return logLevel_.load(std::memory_order_relaxed); }
  void setLogLevel(LogLevel level) noexcept { logLevel_.store(level, std::memory_order_relaxed); }

  /// Writes @p message unless @p level is below the threshold or `off`. The function name, the source file (last path
  /// component) and the line are written only at threshold debug. Never fails.
  void log(std::string_view message, LogLevel level, std::string_view functionName, std::string_view fileName,
           int lineNnumber);

 private:
  LogContext& context_;
  std::atomic<LogLevel> logLevel_ = LogLevel::debug;
};

}  // namespace quillon
