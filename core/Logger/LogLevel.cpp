#include "quillon/LogLevel.h"

#include "core/Json/RawValues.h"

namespace quillon {
namespace {

constexpr RawValue<LogLevel> kLogLevels[] = {
    {LogLevel::debug, "DEBUG"},
    {LogLevel::info, "INFO"},
    {LogLevel::warning, "WARNING"},
    {LogLevel::error, "ERROR"},
};

}  // namespace

std::string_view rawValue(LogLevel level) noexcept {
  return textOf<LogLevel>(kLogLevels, level);
}

template <>
std::optional<LogLevel> fromRawValue(std::string_view text) noexcept {
  return caseOf<LogLevel>(kLogLevels, text);
}

}  // namespace quillon
