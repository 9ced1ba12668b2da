// Blocks the signals that a write can raise.
#pragma once

#include <signal.h>

namespace quillon {

// While it exists, a write of this thread beyond the file size limit (SIGXFSZ) or into a closed pipe (SIGPIPE) only
// fails with an error. Signals already pending are left to the application.
class BlockedWriteSignals {
 public:
  BlockedWriteSignals() noexcept;
  ~BlockedWriteSignals();
  BlockedWriteSignals(const BlockedWriteSignals&) = delete;
  BlockedWriteSignals& operator=(const BlockedWriteSignals&) = delete;

 private:
  sigset_t raisable_;  // not pending before
  sigset_t before_;
};

}  // namespace quillon
