#pragma once

#include <atomic>
#include <condition_variable>
#include <expected>
#include <mutex>
#include <string>

#include <httplib.h>

#include "tools/serve/ConfigurationFolder.h"
#include "tools/serve/Faults.h"

namespace quillon::tools {

class UploadStore;

// The three endpoints that the SDK calls, and one to change the faults, over HTTP on 127.0.0.1. Requests are answered
// on a pool of threads; each is logged to standard output in one line before its answer is sent.
class DevelopmentServer {
 public:
  // uploads must outlive the server. With an address in uploadsTo, such as "http://127.0.0.1:8090", uploads are neither
  // checked nor kept, but passed on to that server, and its answers back.
  DevelopmentServer(ConfigurationFolder folder, UploadStore& uploads, Faults faults, std::string uploadsTo = {});

  // Takes the port, or a free one for 0, and answers with its number. Connections are queued from then on.
  [[nodiscard]] std::expected<int, std::string> bind(int port);

  // Answers requests until stop() is called; call it once, after bind().
  void run();

  // Makes run() return once the requests under way are answered; those that wait out a delay are answered at once.
  // From any thread, once.
  void stop();

  // Whether stop() was called.
  [[nodiscard]] bool stopped() const;

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
  httplib::Server http_;
  socket_t listener_ = INVALID_SOCKET;
  std::atomic<bool> ended_ = false;

  mutable std::mutex mutex_;  // guards the two below
  Faults faults_;
  bool stopping_ = false;
  std::condition_variable stopRequested_;
};

}  // namespace quillon::tools
