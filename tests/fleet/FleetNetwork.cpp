#include "tests/fleet/FleetNetwork.h"

#include <utility>

namespace quillon::fleet {
namespace {

Traffic::Kind kindOf(const HttpRequest& request) {
  if (request.body) return Traffic::upload;
  return request.url.find("/geo/location") != std::string::npos ? Traffic::location : Traffic::configuration;
}

}  // namespace

Traffic& Traffic::operator+=(const Traffic& other) {
  for (std::size_t kind = 0; kind < requests.size(); ++kind) requests[kind] += other.requests[kind];
  failed += other.failed;
  bodyBytesUp += other.bodyBytesUp;
  bodyBytesDown += other.bodyBytesDown;
  return *this;
}

FleetNetwork::FleetNetwork(std::shared_ptr<HttpSession> session, std::shared_ptr<const Clock> clock)
    : session_(std::move(session)), clock_(std::move(clock)), start_(clock_->now()) {}

void FleetNetwork::send(HttpRequest request, std::stop_token stop, Completion completion) {
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

void FleetNetwork::setCut(bool cut) {
  const std::scoped_lock lock(mutex_);
  cut_ = cut;
}

bool FleetNetwork::waitForAnswer() {
  std::unique_lock lock(mutex_);
  if (underWay_ == 0 && !hasAnswer_) return false;
  answered_.wait(lock, [this] { return hasAnswer_; });
  hasAnswer_ = false;
  return true;
}

std::map<std::int64_t, Traffic> FleetNetwork::traffic() const {
  const std::scoped_lock lock(mutex_);
  return traffic_;
}

}  // namespace quillon::fleet
