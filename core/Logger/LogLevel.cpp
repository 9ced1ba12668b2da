#include "quillon/LogLevel.h"

#include "core/Json/RawValues.h"

namespace quillon {

QUILLON_RAW_VALUES(LogLevel, {LogLevel::debug, "DEBUG"}, {LogLevel::info, "INFO"}, {LogLevel::warning, "WARNING"},
                   {LogLevel::error, "ERROR"}, {LogLevel::off, "OFF"});

}  // namespace quillon
