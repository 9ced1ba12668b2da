#pragma once

#include <chrono>
#include <fstream>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/HttpSession.h"

namespace quillon::tools {

// Sends requests as a device does, or malformed ones, and counts them. Thread-safe.
class Probe {
 public:
  // The request limit of a whole check.
  static constexpr int kMaxRequests = 200;

  struct Request {
    std::string method = "GET";
    std::string url;
    HttpHeaders headers = {};
    std::optional<std::string> body = std::nullopt;
    // How the body is sent: in parts with a pause before each, or aborted in the middle.
    int parts = 1;
    std::chrono::milliseconds pause{0};
    bool breaksOff = false;
    bool expectsContinue = false;
  };
  struct Answer {
    int status = 0;  // 0: no response
    HttpHeaders headers = {};
    std::string body = {};
    std::string problem = {};  // why there is no response
    std::chrono::milliseconds time{0};

    // The HTTP status, or the problem.
    [[nodiscard]] std::string summary() const;
    [[nodiscard]] std::string header(const char* name) const;
  };

  // Writes every exchange to trafficFile, one JSON object per line, unless empty. authorities: the file of trusted
  // certificate authorities; empty selects the system's.
  explicit Probe(const std::string& trafficFile, std::string authorities = {});

  Answer send(const Request& request);
  // Sends all concurrently.
  std::vector<Answer> sendTogether(const std::vector<Request>& requests);
  // Sends one after the other over one connection.
  std::vector<Answer> sendInTurn(const std::vector<Request>& requests);

  int count() const;
  // The longest response time, without our own pauses.
  std::chrono::milliseconds slowest() const;
  std::size_t largestSmallAnswer() const;

 private:
  Answer exchange(void* handle, const Request& request);
  void note(const Request& request, const Answer& answer);

  const std::string authorities_;
  mutable std::mutex mutex_;  // guards the members below
  std::ofstream traffic_;
  int count_ = 0;
  std::chrono::milliseconds slowest_{0};
  std::size_t largestSmallAnswer_ = 0;  // excluding configurations
};

}  // namespace quillon::tools
