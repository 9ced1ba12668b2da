// The destination of diagnostics.
#pragma once

#include <string_view>

#include "quillon/LogLevel.h"

namespace quillon {

// Thread-safe. Blocks of different threads are not interleaved.
class Console {
 public:
  virtual ~Console() = default;

  // Writes the text and a line feed atomically.
  virtual void write(std::string_view block) = 0;

  // Passes a unit's message to the application's own log. False: there is none, so write() a block of text instead.
  virtual bool take(LogLevel /*level*/, std::string_view /*text*/, std::string_view /*unit*/) { return false; }

  // Terminates the process with a message and the reporting source file. Only for errors without recovery.
  [[noreturn]] virtual void fatal(std::string_view message, std::string_view file) = 0;
};

}  // namespace quillon
