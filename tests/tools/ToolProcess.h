// A running quillon-consent, as a developer starts it.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

class ToolProcess {
 public:
  // Starts the tool with these arguments; its standard input and output are the test's to write and read. Its error
  // output is the test's own, or goes to a file.
  explicit ToolProcess(const std::vector<std::string>& arguments, const std::string& errorFile = {});
  // Kills it when it still runs.
  ~ToolProcess();

  ToolProcess(const ToolProcess&) = delete;
  ToolProcess& operator=(const ToolProcess&) = delete;

  void writeLine(const std::string& line) const;
  // The next line of its standard output; nothing when the output ended or none came in time.
  std::optional<std::string> readLine(std::chrono::milliseconds timeout = std::chrono::seconds(20));
  // The rest of the lines of its standard output, until it ends.
  std::string readAll();
  void sendSignal(int signal) const;
  // Its exit status, or the negative number of the signal that ended it; nothing when it did not end in time.
  std::optional<int> wait(std::chrono::milliseconds timeout = std::chrono::seconds(20));

 private:
  pid_t pid_ = -1;
  int input_ = -1;
  int output_ = -1;
  int exited_ = -1;  // readable when the process has ended
  std::string buffered_;
};

struct ToolRun {
  int status = 0;
  std::string output;
  std::string errors;
};
// Runs the tool with these arguments to its end; a status of -1 when it did not come.
ToolRun runTool(const std::vector<std::string>& arguments);
