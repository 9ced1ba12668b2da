// A program that runs while a test does, and what it says.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace quillon::test {

class ServerProcess {
 public:
  // Both its outputs are read. As the super-user, it runs as the user of the given name.
  explicit ServerProcess(const std::vector<std::string>& command, const std::string& user = {});
  // Kills it when it still runs.
  ~ServerProcess();
  ServerProcess(const ServerProcess&) = delete;
  ServerProcess& operator=(const ServerProcess&) = delete;

  // The first line that has the text; empty when none came before it ended, or in time.
  std::string waitForLine(const std::string& text, std::chrono::seconds limit = std::chrono::seconds(60));
  std::string output();
  bool hasEnded();
  // SIGKILL also ends its children.
  void sendSignal(int signal) const;
  void sendSignalToChildren(int signal) const;
  // Its exit status, or the negative number of the signal that ended it; nothing when it did not end in time.
  std::optional<int> wait(std::chrono::milliseconds limit = std::chrono::seconds(20));
  pid_t id() const { return process_; }

 private:
  std::vector<pid_t> children() const;
  void read();

  pid_t process_ = -1;
  int output_ = -1;
  int exited_ = -1;
  std::mutex mutex_;  // guards the two below
  std::string said_;
  bool ended_ = false;
  std::condition_variable changed_;
  std::thread reader_;
};

}  // namespace quillon::test
