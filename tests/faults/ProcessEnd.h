// Runs work in a child process, whose death or hang is a result.
#pragma once

#include <poll.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <optional>
#include <stdexcept>

namespace quillon::test {

// Forks; the child runs the work and then exits normally, so that the leak check runs. Returns its wait status; nullopt
// when it timed out and was killed, with its process group if it has one. Call it while this process has one thread,
// unless the work only exits.
inline std::optional<int> endOf(const std::function<void()>& work,
                                std::chrono::milliseconds limit = std::chrono::seconds(10)) {
  const pid_t process = ::fork();
  if (process < 0) throw std::runtime_error("no process");
  if (process == 0) {
    work();
    std::exit(0);
  }
  const int ended = static_cast<int>(::syscall(SYS_pidfd_open, process, 0));
  pollfd waiting{.fd = ended, .events = POLLIN, .revents = 0};
  const bool inTime = ::poll(&waiting, 1, static_cast<int>(limit.count())) > 0;
  ::close(ended);
  if (!inTime) {
    ::kill(-process, SIGKILL);
    ::kill(process, SIGKILL);
  }
  int status = 0;
  while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  return inTime ? std::optional(status) : std::nullopt;
}

}  // namespace quillon::test
