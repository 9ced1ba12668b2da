#include "tests/tools/ToolProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <utility>

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
  input_ = fdopen(in[1], "w");
  output_ = fdopen(out[0], "r");
}

ToolProcess::~ToolProcess() {
  if (pid_ > 0) {
    kill(pid_, SIGKILL);
    wait();
  }
  std::fclose(input_);
  std::fclose(output_);
}

void ToolProcess::writeLine(const std::string& line) const {
  std::fputs((line + "\n").c_str(), input_);
  std::fflush(input_);
}

std::optional<std::string> ToolProcess::readLine() const {
  std::string line;
  for (int c = std::getc(output_); c != EOF; c = std::getc(output_)) {
    if (c == '\n') return line;
    line += static_cast<char>(c);
  }
  return std::nullopt;
}

std::string ToolProcess::readAll() const {
  std::string text;
  for (int c = std::getc(output_); c != EOF; c = std::getc(output_)) text += static_cast<char>(c);
  return text;
}

void ToolProcess::sendSignal(int signal) const {
  kill(pid_, signal);
}

int ToolProcess::wait() {
  int status = 0;
  waitpid(std::exchange(pid_, -1), &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

ToolRun runTool(const std::vector<std::string>& arguments) {
  const quillon::test::TemporaryFolder folder(quillon::test::TemporaryFolder::fastParent());
  const auto errors = folder.path() / "errors";
  ToolProcess tool(arguments, errors);
  auto output = tool.readAll();
  const int status = tool.wait();
  return {status, std::move(output), quillon::test::fileBytes(errors)};
}
