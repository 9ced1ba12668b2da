#include "tools/serve/DevelopmentServer.h"

#include <algorithm>
#include <boost/json.hpp>
#include <chrono>
#include <string_view>
#include <utility>

#include "core/Json/Codec.h"
#include "quillon/PostConsentsRequest.h"
#include "tools/serve/UploadStore.h"

namespace quillon::tools {
namespace {

constexpr std::string_view kLocationPath = "/core/v1/utils/geo/location";
constexpr std::string_view kUploadPath = "/vantari/v1/consent/mobile/singleupload";
constexpr std::string_view kControlPath = "/control";
constexpr std::size_t kMaxBodyBytes = 1u << 20;
constexpr auto kJson = "application/json";

void answer(httplib::Response& response, int httpStatus, int status, std::string_view message) {
  response.status = httpStatus;
  response.set_content(boost::json::serialize(boost::json::object{{"status", status}, {"message", message}}), kJson);
}

// Whether an If-None-Match list contains our tag.
bool matches(std::string_view list, std::string_view entityTag) {
  while (!list.empty()) {
    const auto comma = std::min(list.find(','), list.size());
    std::string_view candidate = list.substr(0, comma);
    list.remove_prefix(std::min(comma + 1, list.size()));
    while (candidate.starts_with(' ')) candidate.remove_prefix(1);
    while (candidate.ends_with(' ')) candidate.remove_suffix(1);
    if (candidate.starts_with("W/")) candidate.remove_prefix(2);
    if (candidate == entityTag || candidate == "*") return true;
  }
  return false;
}

}  // namespace

DevelopmentServer::DevelopmentServer(ConfigurationFolder folder, UploadStore& uploads, Faults faults, Observer observer,
                                     std::string uploadsTo)
    : folder_(std::move(folder)), uploads_(uploads), uploadsTo_(std::move(uploadsTo)), faults_(faults) {
  auto& http = server_.http();
  // One handler per method: the library's routing would match regular expressions against client input.
  http.Get(".*", [this](const auto& request, auto& response) { get(request, response); });
  http.Post(".*", [this](const auto& request, auto& response) { post(request, response); });
  http.set_error_handler([](const httplib::Request&, httplib::Response& response) {
    if (response.body.empty() && response.status >= 400) answer(response, response.status, 1, "request refused");
  });
  http.set_post_routing_handler(std::move(observer));
  http.set_payload_max_length(kMaxBodyBytes);
}

void DevelopmentServer::stop() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  stopRequested_.notify_all();
  server_.stop();
}

bool DevelopmentServer::stopped() const {
  const std::lock_guard lock(mutex_);
  return stopping_;
}

Faults DevelopmentServer::faults() const {
  const std::lock_guard lock(mutex_);
  return faults_;
}

std::expected<Faults, std::string> DevelopmentServer::changeFaults(std::string_view json) {
  const std::lock_guard lock(mutex_);
  auto changed = faults_.changedBy(json);
  if (changed) faults_ = *changed;
  return changed;
}

// Waits for the delay in force when the request arrived, and returns the faults of that moment.
Faults DevelopmentServer::faultsAfterDelay() {
  std::unique_lock lock(mutex_);
  const Faults faults = faults_;
  stopRequested_.wait_for(lock, std::chrono::milliseconds(faults.delay), [this] { return stopping_; });
  return faults;
}

void DevelopmentServer::get(const httplib::Request& request, httplib::Response& response) {
  const Faults faults = faultsAfterDelay();
  if (faults.fail != 0) return answer(response, faults.fail, 1, "failure on request");

  // Clients store one entity tag for all responses. One on the location would replace the configuration's.
  const bool isLocation = request.path == kLocationPath;
  const auto document = folder_.read(isLocation ? "/location.json" : request.path);
  if (!document) return answer(response, 404, 1, "not found");
  if (!isLocation) {
    response.set_header("ETag", document->entityTag);
    if (matches(request.get_header_value("If-None-Match"), document->entityTag)) {
      response.status = 304;
      return;
    }
  }
  response.set_content(document->content, kJson);
}

void DevelopmentServer::post(const httplib::Request& request, httplib::Response& response) {
  if (request.path == kControlPath) return control(request, response);

  const Faults faults = faultsAfterDelay();
  if (faults.fail != 0) return answer(response, faults.fail, 1, "failure on request");
  if (request.path == kUploadPath && !uploadsTo_.empty()) return passOn(request, response);
  if (request.path == kUploadPath) return upload(request, response, faults.uploadStatus);
  answer(response, 404, 1, "not found");
}

void DevelopmentServer::upload(const httplib::Request& request, httplib::Response& response, int status) {
  const std::string token = request.get_header_value("X-Auth-Token");
  if (token.empty()) return answer(response, 401, 1, "X-Auth-Token is missing");
  const auto consents = decode<PostConsentsRequest>(request.body);
  if (!consents) return answer(response, 400, 1, consents.error());
  const auto tokens = folder_.accessTokens(consents->appUUID);
  if (!tokens.empty() && !tokens.contains(token)) return answer(response, 401, 1, "X-Auth-Token is not valid");

  const auto now = std::chrono::system_clock::now().time_since_epoch();
  const auto kept = uploads_.add({.receivedAt = std::chrono::duration_cast<std::chrono::seconds>(now).count(),
                                  .status = status,
                                  .body = request.body});
  if (!kept) return answer(response, 500, 1, kept.error());
  answer(response, 200, status, status == 0 ? "Consents saved" : "Consents not accepted");
}

void DevelopmentServer::passOn(const httplib::Request& request, httplib::Response& response) {
  httplib::Headers headers;
  if (request.has_header("X-Auth-Token")) headers.emplace("X-Auth-Token", request.get_header_value("X-Auth-Token"));
  const auto answered = httplib::Client(uploadsTo_).Post(request.path, headers, request.body, kJson);
  if (!answered) return answer(response, 502, 1, "the server of uploads does not answer");
  response.status = answered->status;
  response.set_content(answered->body, kJson);
}

void DevelopmentServer::control(const httplib::Request& request, httplib::Response& response) {
  // Only browsers send this header: web pages must not access the local server.
  if (request.has_header("Origin")) return answer(response, 403, 1, "not for web pages");
  const auto changed = changeFaults(request.body);
  if (!changed) return answer(response, 400, 1, changed.error());
  response.set_content(changed->toJson(), kJson);
}

}  // namespace quillon::tools
