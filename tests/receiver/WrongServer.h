// Servers that are right but for one fault, for the check that has to find it.
#pragma once

#include <httplib.h>

#include <atomic>
#include <boost/json.hpp>
#include <map>
#include <mutex>
#include <string>
#include <thread>

#include "receiver/uploads/UploadReader.h"

namespace quillon::test {

class WrongServer {
 public:
  enum class Fault {
    none,
    acknowledgesAnything,       // a body that it cannot read is "saved"
    refusesRepeats,             // 409 for an upload that it has
    refusesLateUploads,         // status 2 for what is older than the newest
    refusesUploadsAtOnce,       // 409 while another of the same subject is under way
    answersUploadsByEntityTag,  // 304 to an upload whose tag matches
    takesAnyToken,
    writesStatusAsText,
    refusesLargeUploads,   // above 64 KiB
    dropsSlowClients,      // after a second
    servesPageForMissing,  // 200 in place of 404
    changesEntityTags,     // another one from each machine
    tagsTheLocation,
  };

  WrongServer(Fault fault, std::string configuration, std::string location)
      : fault_(fault), configuration_(std::move(configuration)), location_(std::move(location)) {
    // A thread for each of the ten that come together, and for those that are kept waiting.
    server_.new_task_queue = [] { return new httplib::ThreadPool(24); };
    server_.set_payload_max_length(is(Fault::refusesLargeUploads) ? 64 << 10 : 1 << 20);
    if (is(Fault::dropsSlowClients)) server_.set_read_timeout(0, 500'000);
    server_.Get("/.*", [this](const auto& request, auto& response) { get(request, response); });
    server_.Post("/vantari/v1/consent/mobile/singleupload",
                 [this](const auto& request, auto& response) { post(request, response); });
    port_ = server_.bind_to_any_port("127.0.0.1");
    thread_ = std::thread([this] { server_.listen_after_bind(); });
    while (!server_.is_running()) std::this_thread::yield();
  }
  ~WrongServer() {
    server_.stop();
    thread_.join();
  }

  std::string url() const { return "http://127.0.0.1:" + std::to_string(port_) + "/"; }

 private:
  bool is(Fault fault) const { return fault_ == fault; }

  static void answer(httplib::Response& response, int httpStatus, int status) {
    response.status = httpStatus;
    response.set_content(boost::json::serialize(boost::json::object{{"status", status}, {"message", "said"}}),
                         "application/json");
  }

  void get(const httplib::Request& request, httplib::Response& response) {
    if (request.path == "/core/v1/utils/geo/location") {
      if (is(Fault::tagsTheLocation)) response.set_header("ETag", "\"location\"");
      return response.set_content(location_, "application/json");
    }
    if (!request.path.ends_with("/news-reader/live/config.json")) {
      if (is(Fault::servesPageForMissing)) return response.set_content("<html></html>", "text/html");
      response.status = 404;
      return;
    }
    const std::string tag = is(Fault::changesEntityTags) ? "\"" + std::to_string(++count_ % 2) + "\"" : kTag;
    response.set_header("ETag", tag);
    if (request.get_header_value("If-None-Match") == tag) {
      response.status = 304;
    } else {
      response.set_content(configuration_, "application/json");
    }
  }

  void post(const httplib::Request& request, httplib::Response& response) {
    if (is(Fault::answersUploadsByEntityTag) && request.get_header_value("If-None-Match") == kTag) {
      response.status = 304;
      return;
    }
    const auto configuration = boost::json::parse(configuration_);
    const bool hasToken = request.get_header_value("X-Auth-Token") == configuration.at("x-auth-token").as_string();
    if (!hasToken && !is(Fault::takesAnyToken)) return answer(response, 401, 1);
    const auto upload = receiver::readUpload(request.body);
    if (!upload)
      return answer(response, is(Fault::acknowledgesAnything) ? 200 : 400, is(Fault::acknowledgesAnything) ? 0 : 1);
    std::int64_t time = 0;
    for (const auto& decision : upload->decisions) {
      if (decision.kind == receiver::Kind::purpose) time = std::max(time, decision.decidedAt);
    }
    {
      std::unique_lock lock(mutex_);
      if (is(Fault::refusesRepeats) && seen_[request.body]++ > 0) return answer(response, 409, 1);
      if (is(Fault::refusesLateUploads) && time < newest_[upload->subject]) return answer(response, 200, 2);
      newest_[upload->subject] = time;
      if (is(Fault::refusesUploadsAtOnce)) {
        if (underWay_[upload->subject]++ > 0) return --underWay_[upload->subject], answer(response, 409, 1);
        changed_.wait_for(lock, std::chrono::milliseconds(50), [&] { return false; });
        --underWay_[upload->subject];
      }
    }
    if (is(Fault::writesStatusAsText))
      return response.set_content(R"({"status":"0","message":""})", "application/json");
    answer(response, 200, 0);
  }

  static constexpr const char* kTag = "\"configuration\"";

  const Fault fault_;
  const std::string configuration_;
  const std::string location_;
  httplib::Server server_;
  int port_ = 0;
  std::thread thread_;
  std::atomic<int> count_ = 0;
  std::mutex mutex_;  // guards the members below
  std::condition_variable changed_;
  std::map<std::string, int> seen_;
  std::map<std::string, std::int64_t> newest_;
  std::map<std::string, int> underWay_;
};

}  // namespace quillon::test
