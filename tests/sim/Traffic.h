// Limits the number of requests of a process.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <map>

#include "tests/sim/Servers.h"

namespace quillon::sim {

// Counts per hour of monotonic time.
class Traffic {
 public:
  explicit Traffic(std::int64_t checkInterval) : checkInterval_(checkInterval) {}

  // An event that may cause requests.
  void acted(std::int64_t second) { acts_.push_back(second); }

  // Records a request; true if it exceeds what the check interval, the acts and the retries allow within an hour.
  bool isTooMuch(int owner, Server server, std::int64_t second) {
    auto& requests = requests_[owner][static_cast<std::size_t>(server)];
    requests.push_back(second);
    for (auto* times : {&requests, &acts_}) {
      while (!times->empty() && times->front() < second - hour) times->pop_front();
    }
    // The first attempt, and retries after 15, 45, 105 ... seconds.
    constexpr std::size_t retries = 9;
    // A check may request the language's file and the default file, each again without an entity tag.
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
