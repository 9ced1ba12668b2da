#pragma once

#include <atomic>
#include <expected>
#include <string>

#include <httplib.h>

namespace quillon::tools {

// An HTTP server on 127.0.0.1 with exclusive use of its port. Requests are handled on a thread pool.
class LoopbackServer {
 public:
  LoopbackServer();

  // For the handlers, which are set before bind().
  [[nodiscard]] httplib::Server& http() { return http_; }

  // Binds the port, a free one for 0, and returns its number. Connections are queued from then on.
  [[nodiscard]] std::expected<int, std::string> bind(int port);

  // Serves requests until stop(). Call it once, after bind().
  void run();

  // Makes run() return once running requests are answered. Any thread, once.
  void stop();

 private:
  httplib::Server http_;
  socket_t listener_ = INVALID_SOCKET;
  std::atomic<bool> ended_ = false;
};

}  // namespace quillon::tools
