/// @file
/// The SDK's one diagnostic channel.
#pragma once

#include <atomic>
#include <string>
#include <string_view>

#include "quillon/LogLevel.h"

namespace quillon {

class LogContext;

/// Writes one text block for every message at or above its threshold. Hosts may use it for messages of their own.
/// Thread-safe: blocks of several threads do not mix.
///
/// @code
/// quillon::SDKLogger::shared().log("Reader opened", quillon::LogLevel::info, __func__, __FILE__, __LINE__);
/// @endcode
class SDKLogger {
 public:
  /// The logger of ConsentSDK::shared(). Its threshold is debug until set-up applies the options.
  static SDKLogger& shared();

  /// Used by the SDK itself: applications get theirs from shared() or ConsentSDK::logger().
  explicit SDKLogger(LogContext& context) noexcept : context_(context) {}
  SDKLogger(const SDKLogger&) = delete;
  SDKLogger& operator=(const SDKLogger&) = delete;

  [[nodiscard]] LogLevel logLevel() const noexcept { return logLevel_.load(std::memory_order_relaxed); }
  void setLogLevel(LogLevel level) noexcept { logLevel_.store(level, std::memory_order_relaxed); }

  /// Writes @p message unless @p level lies below the threshold. The function name, the source file (its last path
  /// component is shown) and the line are written at threshold debug only. Never fails.
  void log(std::string_view message, LogLevel level, std::string_view functionName, std::string_view fileName,
           int lineNnumber);

 private:
  LogContext& context_;
  std::atomic<LogLevel> logLevel_ = LogLevel::debug;
};

}  // namespace quillon
