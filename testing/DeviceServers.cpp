#include "testing/DeviceServers.h"

#include <string_view>
#include <utility>

namespace quillon::testing {
namespace {

bool isUpload(const Request& request) {
  return request.method == "POST" && request.url.ends_with("/consent/mobile/singleupload");
}

}  // namespace

void DeviceServers::setConfiguration(std::string document) {
  const std::scoped_lock lock(mutex_);
  configuration_ = std::move(document);
}

void DeviceServers::setLocation(std::string answer) {
  const std::scoped_lock lock(mutex_);
  location_ = std::move(answer);
}

void DeviceServers::setReachable(bool isReachable) {
  const std::scoped_lock lock(mutex_);
  isReachable_ = isReachable;
}

void DeviceServers::setScript(Script script) {
  const std::scoped_lock lock(mutex_);
  script_ = std::move(script);
}

std::vector<Request> DeviceServers::requests() const {
  const std::scoped_lock lock(mutex_);
  return requests_;
}

std::vector<std::string> DeviceServers::uploads() const {
  const std::scoped_lock lock(mutex_);
  std::vector<std::string> bodies;
  for (const Request& request : requests_) {
    if (isUpload(request)) bodies.push_back(request.body);
  }
  return bodies;
}

std::expected<HttpResponse, TransportError> DeviceServers::exchange(const HttpRequest& request) {
  const Request seen{.method = request.method,
                     .url = request.url,
                     .headers = {request.headers.begin(), request.headers.end()},
                     .body = request.body.value_or("")};
  Script script;
  {
    const std::scoped_lock lock(mutex_);
    requests_.push_back(seen);
    if (!isReachable_) return std::unexpected(TransportError{TransportError::Kind::unreachable, "There is no network"});
    script = script_;
  }
  std::optional<Response> response = script ? script(seen) : std::nullopt;
  if (!response) response = ownAnswer(seen);
  return HttpResponse{.url = request.url, .status = response->status, .headers = {}, .body = std::move(response->body)};
}

Response DeviceServers::ownAnswer(const Request& request) const {
  const std::scoped_lock lock(mutex_);
  if (isUpload(request)) return {.body = R"({"status":0,"message":"saved"})"};
  const bool asksForLocation = request.url.ends_with("/geo/location");
  const auto& document = asksForLocation ? location_ : configuration_;
  return document ? Response{.body = *document} : Response{.status = 404};
}

}  // namespace quillon::testing
