// Blocks the signals that a write can raise.
#pragma once

#include <signal.h>

namespace quillon {

// While it exists, a write of this thread beyond the file size limit (SIGXFSZ) or into a closed pipe (SIGPIPE) only
// fails with an error. Signals already pending are left to the application.
class HeldWriteSignals {
 public:
  HeldWriteSignals() noexcept;
  ~HeldWriteSignals();
  HeldWriteSignals(const HeldWriteSignals&) = delete;
  HeldWriteSignals& operator=(const HeldWriteSignals&) = delete;

 private:
  sigset_t raisable_;  // not pending before
  sigset_t before_;
};

}  // namespace quillon
