// A real HTTP server on loopback in place of the services; records requests.
#pragma once

#include <httplib.h>

#include <atomic>
#include <boost/json/serialize.hpp>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace quillon::test {

class ConsentServer {
 public:
  struct Seen {
    std::string method;
    std::string path;
    httplib::Headers headers;
    std::string body;
  };
  using Handler = std::function<void(const httplib::Request&, httplib::Response&)>;

  ConsentServer();
  ~ConsentServer();
  ConsentServer(const ConsentServer&) = delete;
  ConsentServer& operator=(const ConsentServer&) = delete;

  // Ends in "/".
  std::string url() const;

  // Sets the response to each kind of request. Default: no configuration (404), no location (404), uploads accepted
  // with status 0.
  void onConfiguration(Handler handler) { set(configuration_, std::move(handler)); }
  void onLocation(Handler handler) { set(location_, std::move(handler)); }
  void onUpload(Handler handler) { set(upload_, std::move(handler)); }

  // Serves this document for every configuration request, with an entity tag if given.
  void serve(std::string document, std::string tag = {});
  void serve(const boost::json::object& document) { serve(boost::json::serialize(document)); }

  // The requests whose path contains the text.
  std::vector<Seen> seen(std::string_view pathPart = {}) const;

 private:
  void set(Handler& place, Handler handler);
  void answer(const Handler& place, const httplib::Request& request, httplib::Response& response);

  mutable std::mutex mutex_;
  Handler configuration_;
  Handler location_;
  Handler upload_;
  std::vector<Seen> seen_;
  httplib::Server server_;
  int port_;
  std::thread thread_;
};

inline constexpr std::string_view configurationPath = "consent/mobile_banner";
inline constexpr std::string_view locationPath = "geo/location";
inline constexpr std::string_view uploadPath = "singleupload";

ConsentServer::Handler json(std::string body, int status = 200);
// A location: the codes in each language, as JSON objects.
ConsentServer::Handler located(const std::string& country, const std::string& state = "{}");

// The response that accepts an upload.
inline constexpr const char* saved = R"({"status":0,"message":"saved"})";

// Holds answers until they are released.
class HeldAnswers {
 public:
  ConsentServer::Handler before(ConsentServer::Handler answer) const {
    return [flags = flags_, answer = std::move(answer)](const auto& request, auto& response) {
      flags->arrived.test_and_set();
      flags->arrived.notify_all();
      flags->released.wait(false);
      answer(request, response);
    };
  }
  void waitForOne() const { flags_->arrived.wait(false); }
  void release() const {
    flags_->released.test_and_set();
    flags_->released.notify_all();
  }

 private:
  struct Flags {
    std::atomic_flag arrived, released;
  };
  const std::shared_ptr<Flags> flags_ = std::make_shared<Flags>();
};

}  // namespace quillon::test
