#include "tools/serve/LoopbackServer.h"

#include <sys/socket.h>

#include <thread>

namespace quillon::tools {

LoopbackServer::LoopbackServer() {
  // One response per connection, so that no idle connection keeps run() from returning.
  http_.set_keep_alive_max_count(1);
  // By default the library would let two servers share a port unnoticed.
  http_.set_socket_options([this](socket_t socket) {
    const int on = 1;
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    listener_ = socket;
  });
}

std::expected<int, std::string> LoopbackServer::bind(int port) {
  constexpr auto address = "127.0.0.1";
  if (port == 0) {
    port = http_.bind_to_any_port(address);
  } else if (!http_.bind_to_port(address, port)) {
    return std::unexpected("port " + std::to_string(port) + " cannot be taken");
  }
  if (port < 0) return std::unexpected("no free port on 127.0.0.1");
  // The library's backlog is five; the system drops further connections, which retry after a second.
  listen(listener_, SOMAXCONN);
  return port;
}

void LoopbackServer::run() {
  http_.listen_after_bind();
  ended_ = true;
}

void LoopbackServer::stop() {
  // The library ignores a stop before its accept loop has begun.
  while (!http_.is_running() && !ended_) std::this_thread::yield();
  http_.stop();
}

}  // namespace quillon::tools
