#include "platform/linux/BlockedWriteSignals.h"

#include <pthread.h>

#include <cerrno>
#include <ctime>
#include <initializer_list>

namespace quillon {

BlockedWriteSignals::BlockedWriteSignals() noexcept {
  sigset_t waiting;
  sigpending(&waiting);
  sigemptyset(&raisable_);
  for (const int signal : {SIGXFSZ, SIGPIPE}) {
    if (sigismember(&waiting, signal) == 0) sigaddset(&raisable_, signal);
  }
  pthread_sigmask(SIG_BLOCK, &raisable_, &before_);
}

BlockedWriteSignals::~BlockedWriteSignals() {
  const timespec atOnce{};
  while (sigtimedwait(&raisable_, nullptr, &atOnce) > 0 || errno == EINTR) {
  }
  pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

}  // namespace quillon
