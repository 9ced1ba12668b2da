// A console that remembers what was written.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "platform/Console.h"

namespace quillon {

// Thread-safe.
class MemoryConsole : public Console {
 public:
  // Every block written so far, in order, without its line feed.
  [[nodiscard]] std::vector<std::string> blocks() const;

  void write(std::string_view block) override;
  // Memory dies with the process, so the message goes to standard error before it aborts.
  [[noreturn]] void fatal(std::string_view message, std::string_view file) override;

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> blocks_;
};

}  // namespace quillon
