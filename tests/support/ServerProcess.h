// A child program and its output.
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
  // Reads standard output and error. As the super-user, runs it as the given user.
  explicit ServerProcess(const std::vector<std::string>& command, const std::string& user = {});
  // Kills it if still running.
  ~ServerProcess();
  ServerProcess(const ServerProcess&) = delete;
  ServerProcess& operator=(const ServerProcess&) = delete;

  // The first line that contains the text; empty when it ended or timed out before.
  std::string waitForLine(const std::string& text, std::chrono::seconds limit = std::chrono::seconds(60));
  std::string output();
  bool hasEnded();
  // SIGKILL is sent to its children too.
  void sendSignal(int signal) const;
  void sendSignalToChildren(int signal) const;
  // Its exit status, or the negative signal number; nullopt on timeout.
  std::optional<int> wait(std::chrono::milliseconds limit = std::chrono::seconds(20));
  pid_t id() const { return process_; }

 private:
  std::vector<pid_t> children() const;
  void read();

  pid_t process_ = -1;
  int output_ = -1;
  int exited_ = -1;
  std::mutex mutex_;  // guards the two members below
  std::string said_;
  bool ended_ = false;
  std::condition_variable changed_;
  std::thread reader_;
};

}  // namespace quillon::test
