#include "platform/linux/HeldWriteSignals.h"

#include <pthread.h>

#include <cerrno>
#include <ctime>
#include <initializer_list>

namespace quillon {

HeldWriteSignals::HeldWriteSignals() noexcept {
  sigset_t waiting;
  sigpending(&waiting);
  sigemptyset(&raisable_);
  for (const int signal : {SIGXFSZ, SIGPIPE}) {
    if (sigismember(&waiting, signal) == 0) sigaddset(&raisable_, signal);
  }
  pthread_sigmask(SIG_BLOCK, &raisable_, &before_);
}

HeldWriteSignals::~HeldWriteSignals() {
  const timespec atOnce{};
  while (sigtimedwait(&raisable_, nullptr, &atOnce) > 0 || errno == EINTR) {
  }
  pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

}  // namespace quillon
