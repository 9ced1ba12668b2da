// The logger as one source unit uses it.
#pragma once

#include <source_location>
#include <string_view>

#include "core/Text/LogText.h"
#include "quillon/SDKLogger.h"

namespace quillon {

// Names the unit once; each call adds the function and the line.
class UnitLog {
 public:
  UnitLog(SDKLogger& logger, std::string_view unit) noexcept : logger_(logger), unit_(unit) {}

  void operator()(LogLevel level, std::string_view message, std::string_view function,
                  std::source_location place = std::source_location::current()) const {
    logger_.log(message, level, function, unit_, static_cast<int>(place.line()));
  }

 private:
  SDKLogger& logger_;
  std::string_view unit_;
};

}  // namespace quillon
