// A real HTTP server on loopback that plays the vendor's services and remembers what it was asked.
#pragma once

#include <httplib.h>

#include <functional>
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

  // How each kind of request is answered from now on. By default: no configuration (404), no location (404), uploads
  // accepted with status 0.
  void onConfiguration(Handler handler) { set(configuration_, std::move(handler)); }
  void onLocation(Handler handler) { set(location_, std::move(handler)); }
  void onUpload(Handler handler) { set(upload_, std::move(handler)); }

  // Serves this document for every configuration request, with an entity tag when one is given.
  void serve(std::string document, std::string tag = {});

  std::vector<Seen> seen() const;
  // The requests whose path contains the text.
  std::vector<Seen> seen(std::string_view pathPart) const;
  // Waits until that many such requests have arrived; false when they did not within ten seconds.
  bool waitFor(std::string_view pathPart, std::size_t count) const;

 private:
  void set(Handler& place, Handler handler);
  void answer(const Handler& place, const httplib::Request& request, httplib::Response& response);

  mutable std::mutex mutex_;
  mutable std::condition_variable arrived_;
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

}  // namespace quillon::test
