// Keeps the signals that a write can raise from ending the application.
#pragma once

#include <signal.h>

namespace quillon {

// While it lives, a write of this thread past the limit of a file's size (SIGXFSZ) or into a pipe without a reader
// (SIGPIPE) fails with an error and nothing else. A signal that was waiting before is left to the application.
class HeldWriteSignals {
 public:
  HeldWriteSignals() noexcept;
  ~HeldWriteSignals();
  HeldWriteSignals(const HeldWriteSignals&) = delete;
  HeldWriteSignals& operator=(const HeldWriteSignals&) = delete;

 private:
  sigset_t raisable_;  // not waiting before
  sigset_t before_;
};

}  // namespace quillon
