// A console on the process's standard streams.
#pragma once

#include "platform/Console.h"

namespace quillon {

// Thread-safe. Blocks go to standard output; lost silently when it is closed or full.
class StandardConsole : public Console {
 public:
  void write(std::string_view block) override;
  // Writes "<file>: Fatal error: <message>" to standard error and aborts.
  [[noreturn]] void fatal(std::string_view message, std::string_view file) override;
};

}  // namespace quillon
