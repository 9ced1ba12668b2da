// How many requests a process may make.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <map>

#include "tests/sim/Servers.h"

namespace quillon::sim {

// Counts in hours of time that passes, whatever the clock on the wall shows.
class Traffic {
 public:
  explicit Traffic(std::int64_t checkInterval) : checkInterval_(checkInterval) {}

  // Something happened to which requests may be the answer.
  void acted(std::int64_t second) { acts_.push_back(second); }

  // Whether a request is one more, within an hour, than the check interval, the acts and the retries allow.
  bool isTooMuch(int owner, Server server, std::int64_t second) {
    auto& requests = requests_[owner][static_cast<std::size_t>(server)];
    requests.push_back(second);
    for (auto* times : {&requests, &acts_}) {
      while (!times->empty() && times->front() < second - hour) times->pop_front();
    }
    // After 15, 45, 105 ... seconds, and the first time.
    constexpr std::size_t retries = 9;
    // A document may be asked for in a language and in none, and both once more without the tag of another one.
    constexpr std::size_t requestsOfACheck = 4;
    const auto checks = static_cast<std::size_t>(hour / checkInterval_ + 1);
    return requests.size() > requestsOfACheck * (checks + 2 * acts_.size() + retries);
  }

 private:
  static constexpr std::int64_t hour = 3600;
  const std::int64_t checkInterval_;
  std::deque<std::int64_t> acts_;
  std::map<int, std::array<std::deque<std::int64_t>, serverCount>> requests_;
};

}  // namespace quillon::sim
