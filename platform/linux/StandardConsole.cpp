#include "platform/linux/StandardConsole.h"

#include <cstdio>

#include "platform/linux/BlockedWriteSignals.h"
#include "platform/parts/FatalError.h"

namespace quillon {

// Uses the stream's lock, so that blocks do not mix with the host's output either.
void StandardConsole::write(std::string_view block) {
  const BlockedWriteSignals held;
  flockfile(stdout);
  fwrite_unlocked(block.data(), 1, block.size(), stdout);
  putc_unlocked('\n', stdout);
  fflush_unlocked(stdout);
  funlockfile(stdout);
}

void StandardConsole::fatal(std::string_view message, std::string_view file) {
  abortWithMessage(message, file);
}

}  // namespace quillon
