// A console that stores its output.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "platform/Console.h"

namespace quillon {

// Thread-safe.
class MemoryConsole : public Console {
 public:
  // All blocks written, in order, without their line feed.
  [[nodiscard]] std::vector<std::string> blocks() const;

  void write(std::string_view block) override;
  // Writes the message to standard error and aborts.
  [[noreturn]] void fatal(std::string_view message, std::string_view file) override;

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> blocks_;
};

}  // namespace quillon
