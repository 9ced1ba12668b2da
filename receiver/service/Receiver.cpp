#include "receiver/service/Receiver.h"

#include <algorithm>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <chrono>
#include <random>

#include "receiver/uploads/UploadReader.h"

namespace quillon::receiver {
namespace {

constexpr std::string_view kUploadPath = "/vantari/v1/consent/mobile/singleupload";
constexpr std::size_t kMaxPlaceBytes = 16;
// For proxies and tools: devices retry at their next check regardless.
constexpr int kRetryAfterSeconds = 30;

HttpResponse answer(int httpStatus, int status, std::string_view message) {
  HttpResponse response{.status = httpStatus,
                        .body = boost::json::serialize(boost::json::object{{"status", status}, {"message", message}})};
  if (httpStatus == 503) response.headers.emplace_back("Retry-After", std::to_string(kRetryAfterSeconds));
  return response;
}

std::int64_t secondsNow() {
  return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch()).count();
}

}  // namespace

Receiver::Receiver(Options options, Tokens tokens, CommitQueue& queue, Metrics& metrics, EventLog& log)
    : options_(std::move(options)), tokens_(std::move(tokens)), queue_(queue), metrics_(metrics), log_(log) {}

void Receiver::handle(HttpRequest request, HttpServer::Respond respond, const HttpServer& server) {
  respond = counted(request, std::move(respond));
  const bool isGet = request.method == "GET";
  if (request.path == kUploadPath) {
    if (request.method == "POST") return upload(std::move(request), std::move(respond));
    auto refusal = answer(405, 1, "uploads are posted");
    refusal.headers.emplace_back("Allow", "POST");
    return respond(std::move(refusal));
  }
  if (isGet && request.path == "/health") {
    return respond(queue_.isReachable() ? answer(200, 0, "ready") : answer(503, 1, "the store does not answer"));
  }
  if (isGet && request.path == "/metrics") {
    return respond({.body = metrics_.text({.isStoreReachable = queue_.isReachable(),
                                           .connections = server.connections(),
                                           .waitingUploads = queue_.waiting(),
                                           .receivedBytes = server.receivedBytes()}),
                    .type = "text/plain; version=0.0.4; charset=utf-8"});
  }
  respond(answer(404, 1, "not found"));
}

void Receiver::upload(HttpRequest request, HttpServer::Respond respond) {
  auto upload = readUpload(request.body);
  // The token is required before anything about the body is reported; which token it must be depends on the body.
  const std::string_view token = request.header("X-Auth-Token");
  if (token.empty()) return respond(answer(401, 1, "X-Auth-Token is missing"));
  if (!upload) return respond(answer(400, 1, upload.error()));
  const Tokens::Match* match = tokens_.find(upload->application, token);
  if (match == nullptr) return respond(answer(401, 1, "X-Auth-Token is not valid"));
  metrics_.tokenUsed(match->line);
  upload->tenant = match->tenant;
  upload->place = placeOf(request);
  upload->historyHead = headOf(request);
  upload->receivedAt = secondsNow();
  const bool taken = queue_.submit(*std::move(upload), [respond](CommitQueue::Outcome outcome) {
    switch (outcome) {
      case CommitQueue::Outcome::committed:
        return respond(answer(200, 0, "Consents saved"));
      case CommitQueue::Outcome::busy:
        return respond(answer(503, 1, "the store does not answer"));
      case CommitQueue::Outcome::refused:
        return respond(answer(500, 1, "the store does not take this upload"));
    }
  });
  if (!taken) respond(answer(503, 1, queue_.isReachable() ? "too many uploads" : "the store does not answer"));
}

std::string Receiver::placeOf(const HttpRequest& request) const {
  if (options_.placeHeader.empty()) return {};
  const std::string_view place = request.header(options_.placeHeader);
  const bool isSound =
      place.size() <= kMaxPlaceBytes && std::ranges::all_of(place, [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '#';
      });
  return isSound ? std::string(place) : std::string();
}

std::string Receiver::headOf(const HttpRequest& request) {
  constexpr std::size_t digits = 64;
  const std::string_view head = request.header("X-Quillon-History-Head");
  const bool isDigest = head.size() == digits && head.find_first_not_of("0123456789abcdef") == std::string_view::npos;
  return isDigest ? std::string(head) : std::string();
}

HttpServer::Respond Receiver::counted(const HttpRequest& request, HttpServer::Respond respond) {
  const bool isUpload = request.path == kUploadPath;
  return [this, isUpload, bytes = request.body.size(), begin = std::chrono::steady_clock::now(),
          respond = std::move(respond)](HttpResponse response) {
    metrics_.answered(response.status);
    // Logs refused uploads, not other unsuccessful requests of scanners.
    if (options_.logsEveryRequest || (isUpload && response.status != 200)) {
      const auto time = std::chrono::steady_clock::now() - begin;
      log_.write("request", {{"upload", isUpload},
                             {"status", response.status},
                             {"bytes", bytes},
                             {"micros", std::chrono::duration_cast<std::chrono::microseconds>(time).count()}});
    }
    respond(std::move(response));
  };
}

}  // namespace quillon::receiver
