#include "tests/tools/ToolProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "tests/support/TemporaryFolder.h"

ToolProcess::ToolProcess(const std::vector<std::string>& arguments, const std::string& errorFile) {
  signal(SIGPIPE, SIG_IGN);  // a tool that has ended takes no more lines
  std::vector<char*> argv{const_cast<char*>(QUILLON_CONSENT)};
  for (const auto& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);

  int out[2];
  int in[2];
  if (pipe2(out, O_CLOEXEC) != 0 || pipe2(in, O_CLOEXEC) != 0) std::abort();
  pid_ = fork();
  if (pid_ == 0) {
    dup2(in[0], STDIN_FILENO);
    dup2(out[1], STDOUT_FILENO);
    if (!errorFile.empty()) dup2(open(errorFile.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600), STDERR_FILENO);
    execv(argv[0], argv.data());
    _exit(127);
  }
  close(in[0]);
  close(out[1]);
  input_ = in[1];
  output_ = out[0];
  exited_ = static_cast<int>(syscall(SYS_pidfd_open, pid_, 0));
}

ToolProcess::~ToolProcess() {
  if (pid_ > 0) {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
  close(input_);
  close(output_);
  close(exited_);
}

void ToolProcess::writeLine(const std::string& line) const {
  const std::string text = line + "\n";
  for (std::size_t written = 0; written < text.size();) {
    const ssize_t count = write(input_, text.data() + written, text.size() - written);
    if (count <= 0) return;
    written += static_cast<std::size_t>(count);
  }
}

std::optional<std::string> ToolProcess::readLine(std::chrono::milliseconds timeout) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  while (true) {
    if (const auto end = buffered_.find('\n'); end != std::string::npos) {
      std::string line = buffered_.substr(0, end);
      buffered_.erase(0, end + 1);
      return line;
    }
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    pollfd waiting{.fd = output_, .events = POLLIN, .revents = 0};
    char chunk[4096];
    if (left.count() <= 0 || poll(&waiting, 1, static_cast<int>(left.count())) <= 0) return std::nullopt;
    const ssize_t count = read(output_, chunk, sizeof chunk);
    if (count <= 0) return std::nullopt;
    buffered_.append(chunk, static_cast<std::size_t>(count));
  }
}

std::string ToolProcess::readAll() {
  std::string text;
  while (const auto line = readLine()) text += *line + "\n";
  return text;
}

void ToolProcess::sendSignal(int signal) const {
  kill(pid_, signal);
}

std::optional<int> ToolProcess::wait(std::chrono::milliseconds timeout) {
  pollfd waiting{.fd = exited_, .events = POLLIN, .revents = 0};
  if (poll(&waiting, 1, static_cast<int>(timeout.count())) <= 0) return std::nullopt;
  int status = 0;
  waitpid(pid_, &status, 0);
  pid_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

ToolRun runTool(const std::vector<std::string>& arguments) {
  const quillon::test::TemporaryFolder folder(quillon::test::TemporaryFolder::fastParent());
  const auto errors = folder.path() / "errors";
  ToolProcess tool(arguments, errors);
  auto output = tool.readAll();
  const int status = tool.wait().value_or(-1);
  return {status, std::move(output), quillon::test::fileBytes(errors)};
}
