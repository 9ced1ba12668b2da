#include "tests/support/ServerProcess.h"

#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <pwd.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

namespace quillon::test {
namespace {

// Ends a process that cannot go on, with the reason as its output. Safe between fork and exec.
void endChild(int status, const char* what) {
  for (const char* part : {what, ": ", strerrordesc_np(errno), "\n"}) {
    if (::write(STDERR_FILENO, part, strlen(part)) < 0) break;
  }
  _exit(status);
}

}  // namespace

ServerProcess::ServerProcess(const std::vector<std::string>& command, const std::string& user) {
  std::vector<char*> argv;
  for (const auto& word : command) argv.push_back(const_cast<char*>(word.c_str()));
  argv.push_back(nullptr);
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) std::abort();
  // Before the fork: the child of a process with threads must not ask for it.
  const bool isOther = !user.empty() && geteuid() == 0;
  const passwd* const other = isOther ? getpwnam(user.c_str()) : nullptr;
  process_ = fork();
  if (process_ < 0) {
    std::perror("no process");
    std::abort();
  }
  if (process_ == 0) {
    dup2(ends[1], STDOUT_FILENO);
    dup2(ends[1], STDERR_FILENO);
    if (isOther && (!other || setgroups(0, nullptr) != 0 || setgid(other->pw_gid) != 0 || setuid(other->pw_uid) != 0)) {
      endChild(126, "another user");
    }
    // Servers end with a killed test; the threads that start them live as long as the test.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    execvp(argv[0], argv.data());
    endChild(127, argv[0]);
  }
  close(ends[1]);
  output_ = ends[0];
  exited_ = static_cast<int>(syscall(SYS_pidfd_open, process_, 0));
  reader_ = std::thread([this] { read(); });
}

ServerProcess::~ServerProcess() {
  if (process_ > 0) {
    sendSignal(SIGKILL);
    waitpid(process_, nullptr, 0);
  }
  reader_.join();
  close(output_);
  close(exited_);
}

void ServerProcess::read() {
  char chunk[4096];
  for (ssize_t count = 1; count > 0;) {
    count = ::read(output_, chunk, sizeof chunk);
    const std::scoped_lock lock(mutex_);
    if (count > 0) said_.append(chunk, static_cast<std::size_t>(count));
    ended_ = count <= 0;
    changed_.notify_all();
  }
}

std::string ServerProcess::waitForLine(const std::string& text, std::chrono::seconds limit) {
  std::unique_lock lock(mutex_);
  std::string line;
  changed_.wait_for(lock, limit, [&] {
    const auto at = said_.find(text);
    if (at == std::string::npos) return ended_;
    const auto begin = said_.rfind('\n', at) + 1;
    const auto end = said_.find('\n', at);
    if (end != std::string::npos) line = said_.substr(begin, end - begin);
    return end != std::string::npos || ended_;
  });
  return line;
}

std::string ServerProcess::output() {
  const std::scoped_lock lock(mutex_);
  return said_;
}

bool ServerProcess::hasEnded() {
  const std::scoped_lock lock(mutex_);
  return ended_;
}

std::vector<pid_t> ServerProcess::children() const {
  const std::string id = std::to_string(process_);
  std::ifstream list("/proc/" + id + "/task/" + id + "/children");
  std::vector<pid_t> children;
  for (pid_t child = 0; list >> child;) children.push_back(child);
  return children;
}

void ServerProcess::sendSignal(int signal) const {
  if (process_ <= 0) return;
  const auto orphans = signal == SIGKILL ? children() : std::vector<pid_t>();
  ::kill(process_, signal);
  for (const pid_t child : orphans) ::kill(child, signal);
}

void ServerProcess::sendSignalToChildren(int signal) const {
  for (const pid_t child : children()) ::kill(child, signal);
}

std::optional<int> ServerProcess::wait(std::chrono::milliseconds limit) {
  pollfd waiting{.fd = exited_, .events = POLLIN, .revents = 0};
  if (poll(&waiting, 1, static_cast<int>(limit.count())) <= 0) return std::nullopt;
  int status = 0;
  waitpid(process_, &status, 0);
  process_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace quillon::test
