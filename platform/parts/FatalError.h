// Process termination on a fatal error.
#pragma once

#include <string_view>

namespace quillon {

// Writes "<file>: Fatal error: <message>" and a line feed to standard error and aborts.
[[noreturn]] void abortWithMessage(std::string_view message, std::string_view file) noexcept;

}  // namespace quillon
