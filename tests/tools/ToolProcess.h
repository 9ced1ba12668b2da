// A running quillon-consent, as a developer starts it.
#pragma once

#include <sys/types.h>

#include <cstdio>
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
  // The next line of its standard output; nothing when the output ended.
  std::optional<std::string> readLine() const;
  // The rest of its standard output, until it ends.
  std::string readAll() const;
  void sendSignal(int signal) const;
  // Its exit status once it has ended, or the negative number of the signal that ended it.
  int wait();

 private:
  pid_t pid_ = -1;
  std::FILE* input_ = nullptr;
  std::FILE* output_ = nullptr;
};

struct ToolRun {
  int status = 0;
  std::string output;
  std::string errors;
};
// Runs the tool with these arguments to its end.
ToolRun runTool(const std::vector<std::string>& arguments);
