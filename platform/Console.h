// Where diagnostics go.
#pragma once

#include <string_view>

namespace quillon {

// Thread-safe. Blocks of several threads do not mix.
class Console {
 public:
  virtual ~Console() = default;

  // Writes the text and a line feed as one item.
  virtual void write(std::string_view block) = 0;

  // Stops the process with a message and the source file that gave up. Only for what leaves no way on.
  [[noreturn]] virtual void fatal(std::string_view message, std::string_view file) = 0;
};

}  // namespace quillon
