// Runs part of a test in a child process. Do not fork while a database is open: its locks belong to the process that
// opened it.
#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <exception>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace quillon::test {

class ChildProcess {
 public:
  struct Say {
    void operator()(std::string_view text) const {
      if (::write(end, text.data(), text.size()) != static_cast<ssize_t>(text.size())) ::_exit(1);
    }
    int end;
  };

  explicit ChildProcess(const std::function<void(const Say&)>& work) {
    int ends[2];
    if (::pipe(ends) != 0) throw std::runtime_error("no pipe");
    process_ = ::fork();
    if (process_ < 0) throw std::runtime_error("no process");
    if (process_ == 0) {
      const Say say{ends[1]};
      try {
        work(say);
      } catch (const std::exception& error) {
        say(error.what());
      }
      ::_exit(0);
    }
    ::close(ends[1]);
    output_ = ends[0];
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess() {
    kill();
    ::close(output_);
  }

  // The next bytes of its output; empty when it has ended.
  std::string hear() {
    char buffer[4096];
    ssize_t count = 0;
    do {
      count = ::read(output_, buffer, sizeof(buffer));
    } while (count < 0 && errno == EINTR);
    return {buffer, count > 0 ? static_cast<std::size_t>(count) : 0};
  }

  // The rest of its output, and how it ended if not normally.
  std::string finish() {
    std::string all;
    for (auto part = hear(); !part.empty(); part = hear()) all += part;
    const int status = wait();
    if (status != 0) all += " [ended with wait status " + std::to_string(status) + "]";
    return all;
  }

  void kill() {
    if (process_ <= 0) return;
    ::kill(process_, SIGKILL);
    wait();
  }

 private:
  int wait() {
    int status = 0;
    while (::waitpid(process_, &status, 0) < 0 && errno == EINTR) {
    }
    process_ = -1;
    return status;
  }

  pid_t process_ = -1;
  int output_ = -1;
};

}  // namespace quillon::test
