#include "platform/memory/MemoryConsole.h"

#include "platform/parts/FatalError.h"

namespace quillon {

std::vector<std::string> MemoryConsole::blocks() const {
  const std::lock_guard lock(mutex_);
  return blocks_;
}

void MemoryConsole::write(std::string_view block) {
  const std::lock_guard lock(mutex_);
  blocks_.emplace_back(block);
}

void MemoryConsole::fatal(std::string_view message, std::string_view file) {
  abortWithMessage(message, file);
}

}  // namespace quillon
