#include "tests/fleet/FleetNetwork.h"

#include <optional>
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
  bool cut = false;
  {
    const std::scoped_lock lock(mutex_);
    Traffic& traffic = traffic_[second];
    ++traffic.requests[kindOf(request)];
    if (request.body) traffic.bodyBytesUp += static_cast<std::int64_t>(request.body->size());
    cut = cut_;
    if (cut) ++traffic.failed;
  }
  if (cut) {
    completion(std::unexpected(TransportError{TransportError::Kind::unreachable, "The network is cut"}));
    return;
  }
  auto counted = [this, second, completion = std::move(completion)](auto answer) mutable {
    finished(second, answer);
    completion(std::move(answer));
    std::optional<Waiting> next;
    {
      const std::scoped_lock lock(mutex_);
      --underWay_;
      hasAnswer_ = true;
      if (!waiting_.empty()) {
        next = std::move(waiting_.front());
        waiting_.pop_front();
        ++underWay_;
      }
    }
    answered_.notify_one();
    if (next) begin(std::move(*next));
  };
  Waiting waiting{std::move(request), std::move(stop), std::move(counted)};
  {
    const std::scoped_lock lock(mutex_);
    if (underWay_ == maximumUnderWay) {
      waiting_.push_back(std::move(waiting));
      return;
    }
    ++underWay_;
  }
  begin(std::move(waiting));
}

void FleetNetwork::begin(Waiting waiting) {
  session_->send(std::move(waiting.request), std::move(waiting.stop), std::move(waiting.completion));
}

void FleetNetwork::finished(std::int64_t second, const std::expected<HttpResponse, TransportError>& answer) {
  const std::scoped_lock lock(mutex_);
  Traffic& traffic = traffic_[second];
  if (!answer || answer->status.value_or(0) >= 400) ++traffic.failed;
  if (answer) traffic.bodyBytesDown += static_cast<std::int64_t>(answer->body.size());
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
