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

// Sends single requests as a device does, or worse, and keeps count of them. Thread-safe.
class Probe {
 public:
  // The most that a whole check may ask for.
  static constexpr int kMaxRequests = 200;

  struct Request {
    std::string method = "GET";
    std::string url;
    HttpHeaders headers = {};
    std::optional<std::string> body = std::nullopt;
    // How the body goes out: in so many parts with a pause before each, or broken off in its middle.
    int parts = 1;
    std::chrono::milliseconds pause{0};
    bool breaksOff = false;
    bool expectsContinue = false;
  };
  struct Answer {
    int status = 0;  // 0: none came
    HttpHeaders headers = {};
    std::string body = {};
    std::string problem = {};  // why none came
    std::chrono::milliseconds time{0};

    // An HTTP status, or the problem.
    [[nodiscard]] std::string summary() const;
    [[nodiscard]] std::string header(const char* name) const;
  };

  // Every exchange is written to the first file, one JSON object a line; empty: none is. Certificates are believed that
  // an authority of the second file has signed; empty: one that the system knows.
  explicit Probe(const std::string& trafficFile, std::string authorities = {});

  Answer send(const Request& request);
  // All at once.
  std::vector<Answer> sendTogether(const std::vector<Request>& requests);
  // One after the other over one connection.
  std::vector<Answer> sendInTurn(const std::vector<Request>& requests);

  int count() const;
  // The longest time that an answer took, pauses of our own left out.
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
  std::size_t largestSmallAnswer_ = 0;  // of those that are no configuration
};

}  // namespace quillon::tools
