#pragma once

#include <array>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/Clock.h"
#include "platform/HttpSession.h"

namespace quillon::fleet {

// What the devices asked for in one simulated second.
struct Traffic {
  enum Kind { configuration, location, upload };
  std::array<std::int64_t, 3> requests{};
  std::int64_t failed = 0;  // unreachable, or an answer of 400 and above
  std::int64_t bodyBytesUp = 0;
  std::int64_t bodyBytesDown = 0;

  std::int64_t total() const { return requests[configuration] + requests[location] + requests[upload]; }
  Traffic& operator+=(const Traffic& other);
};

// The network between all devices of a fleet and the servers: real exchanges, counted by the second of the simulated
// clock in which they began. Thread-safe.
class FleetNetwork : public HttpSession {
 public:
  // Real connections at a time; whoever sends more waits, so that ten thousand devices in one process do not need ten
  // thousand descriptors.
  static constexpr std::size_t maximumUnderWay = 64;

  FleetNetwork(std::shared_ptr<HttpSession> session, std::shared_ptr<const Clock> clock);

  void send(HttpRequest request, std::stop_token stop, Completion completion) override;

  // While it is cut, every request is unreachable.
  void setCut(bool cut);

  // Waits until an exchange is over that began before; false at once when none is under way.
  bool waitForAnswer();

  // By seconds since the start.
  std::map<std::int64_t, Traffic> traffic() const;

 private:
  const std::shared_ptr<HttpSession> session_;
  const std::shared_ptr<const Clock> clock_;
  const WallTime start_;

  mutable std::mutex mutex_;  // guards the members below
  std::condition_variable answered_;
  std::map<std::int64_t, Traffic> traffic_;
  std::size_t underWay_ = 0;
  bool hasAnswer_ = false;
  bool cut_ = false;
};

}  // namespace quillon::fleet
