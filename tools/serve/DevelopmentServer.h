#pragma once

#include <condition_variable>
#include <expected>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>

#include <httplib.h>

#include "tools/serve/ConfigurationFolder.h"
#include "tools/serve/Faults.h"
#include "tools/serve/LoopbackServer.h"

namespace quillon::tools {

class UploadStore;

// The three endpoints of the SDK, and one to change the faults, over HTTP on 127.0.0.1. Requests are handled on a
// thread pool; the observer, which must be thread-safe, is called for each before its response is sent.
class DevelopmentServer {
 public:
  using Observer = std::function<void(const httplib::Request&, const httplib::Response&)>;

  // `uploads` must outlive the server. With an address in `uploadsTo`, such as "http://127.0.0.1:8090", uploads are
  // neither checked nor stored but forwarded to that server, and its responses returned.
  DevelopmentServer(ConfigurationFolder folder, UploadStore& uploads, Faults faults, Observer observer,
                    std::string uploadsTo = {});

  // Binds the port, a free one for 0, and returns its number. Connections are queued from then on.
  [[nodiscard]] std::expected<int, std::string> bind(int port) { return server_.bind(port); }

  // Serves requests until stop(). Call it once, after bind().
  void run() { server_.run(); }

  // Makes run() return once running requests are answered; delayed ones are answered at once. Any thread, once.
  void stop();

  // Whether stop() was called.
  [[nodiscard]] bool stopped() const;

  // Any thread. Faults::changedBy() says what the text may be; the faults stay as they are when it is something else.
  [[nodiscard]] Faults faults() const;
  [[nodiscard]] std::expected<Faults, std::string> changeFaults(std::string_view json);

 private:
  void get(const httplib::Request& request, httplib::Response& response);
  void post(const httplib::Request& request, httplib::Response& response);
  void upload(const httplib::Request& request, httplib::Response& response, int status);
  void passOn(const httplib::Request& request, httplib::Response& response);
  void control(const httplib::Request& request, httplib::Response& response);
  Faults faultsAfterDelay();

  ConfigurationFolder folder_;
  UploadStore& uploads_;
  const std::string uploadsTo_;
  LoopbackServer server_;

  mutable std::mutex mutex_;  // guards the two members below
  Faults faults_;
  bool stopping_ = false;
  std::condition_variable stopRequested_;
};

}  // namespace quillon::tools
