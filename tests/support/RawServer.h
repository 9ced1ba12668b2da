// A server for protocol violations.
#pragma once

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <future>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace quillon::test {

// Sends given bytes to every client.
class RawServer {
 public:
  using Behaviour = std::function<void(int connection)>;

  explicit RawServer(Behaviour behaviour) : behaviour_(std::move(behaviour)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (bind(listener_, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(listener_, 64) != 0) std::abort();
    getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size);
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this] { serve(); });
  }
  ~RawServer() {
    shutdown(listener_, SHUT_RDWR);
    thread_.join();
    for (const int connection : connections_) shutdown(connection, SHUT_RDWR);
    for (auto& worker : workers_) worker.join();
    for (const int connection : connections_) close(connection);
    close(listener_);
  }

  std::string url(const std::string& path = "/") const { return "http://127.0.0.1:" + std::to_string(port_) + path; }

  // Waits for the first request, without its body; call once.
  std::string firstRequest() {
    auto future = asked_.get_future();
    return future.wait_for(std::chrono::seconds(30)) == std::future_status::ready ? future.get() : "none came";
  }

  // Reads up to the empty line.
  static std::string readRequest(int connection) {
    std::string text;
    char byte = 0;
    while (!text.ends_with("\r\n\r\n") && recv(connection, &byte, 1, 0) == 1) text += byte;
    return text;
  }
  static bool say(int connection, std::string_view text) {
    return send(connection, text.data(), text.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(text.size());
  }
  // Keeps the connection open until the peer closes it.
  static void fallSilent(int connection) {
    char byte = 0;
    while (recv(connection, &byte, 1, 0) > 0) {
    }
  }

 private:
  void serve() {
    for (int connection = accept(listener_, nullptr, nullptr); connection >= 0;
         connection = accept(listener_, nullptr, nullptr)) {
      connections_.push_back(connection);
      workers_.emplace_back([this, connection] {
        std::string request = readRequest(connection);
        if (!announced_.exchange(true)) asked_.set_value(std::move(request));
        behaviour_(connection);
        shutdown(connection, SHUT_RDWR);
      });
    }
  }

  const int listener_ = socket(AF_INET, SOCK_STREAM, 0);
  int port_ = 0;
  Behaviour behaviour_;
  std::promise<std::string> asked_;
  std::atomic<bool> announced_ = false;
  std::vector<int> connections_;
  std::vector<std::thread> workers_;
  std::thread thread_;
};

}  // namespace quillon::test
