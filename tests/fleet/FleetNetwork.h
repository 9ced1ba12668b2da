#pragma once

#include <array>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

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
  Traffic& operator+=(const Traffic& other) {
    for (std::size_t kind = 0; kind < requests.size(); ++kind) requests[kind] += other.requests[kind];
    failed += other.failed;
    bodyBytesUp += other.bodyBytesUp;
    bodyBytesDown += other.bodyBytesDown;
    return *this;
  }
};

// The network between all devices of a fleet and the servers: real exchanges, counted by the second of the simulated
// clock in which they began. Thread-safe.
class FleetNetwork : public HttpSession {
 public:
  // Real connections at a time; whoever sends more waits, so that ten thousand devices in one process do not need ten
  // thousand descriptors.
  static constexpr std::size_t maximumUnderWay = 64;

  FleetNetwork(std::shared_ptr<HttpSession> session, std::shared_ptr<const Clock> clock)
      : session_(std::move(session)), clock_(std::move(clock)), start_(clock_->now()) {}

  void send(HttpRequest request, std::stop_token stop, Completion completion) override {
    const auto second = std::chrono::floor<std::chrono::seconds>(clock_->now() - start_).count();
    {
      std::unique_lock lock(mutex_);
      Traffic& traffic = traffic_[second];
      ++traffic.requests[kindOf(request)];
      if (request.body) traffic.bodyBytesUp += static_cast<std::int64_t>(request.body->size());
      if (cut_) {
        ++traffic.failed;
        lock.unlock();
        return completion(std::unexpected(TransportError{TransportError::Kind::unreachable, "The network is cut"}));
      }
      answered_.wait(lock, [this] { return underWay_ < maximumUnderWay; });
      ++underWay_;
    }
    session_->send(std::move(request), std::move(stop),
                   [this, second, completion = std::move(completion)](auto answer) mutable {
                     {
                       const std::scoped_lock lock(mutex_);
                       Traffic& traffic = traffic_[second];
                       if (!answer || answer->status.value_or(0) >= 400) ++traffic.failed;
                       if (answer) traffic.bodyBytesDown += static_cast<std::int64_t>(answer->body.size());
                     }
                     completion(std::move(answer));
                     {
                       const std::scoped_lock lock(mutex_);
                       --underWay_;
                       hasAnswer_ = true;
                     }
                     answered_.notify_one();
                   });
  }

  // While it is cut, every request is unreachable.
  void setCut(bool cut) {
    const std::scoped_lock lock(mutex_);
    cut_ = cut;
  }

  // Waits until an exchange is over that began before; false at once when none is under way.
  bool waitForAnswer() {
    std::unique_lock lock(mutex_);
    if (underWay_ == 0 && !hasAnswer_) return false;
    answered_.wait(lock, [this] { return hasAnswer_; });
    hasAnswer_ = false;
    return true;
  }

  // By seconds since the start.
  std::map<std::int64_t, Traffic> traffic() const {
    const std::scoped_lock lock(mutex_);
    return traffic_;
  }

 private:
  static Traffic::Kind kindOf(const HttpRequest& request) {
    if (request.body) return Traffic::upload;
    return request.url.contains("/geo/location") ? Traffic::location : Traffic::configuration;
  }

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
