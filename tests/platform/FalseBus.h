// A server in place of a message bus.
#pragma once

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/TemporaryFolder.h"

namespace quillon::test {

// Listens at a bus address, sends a text to every client, and then nothing.
class FalseBus {
 public:
  explicit FalseBus(std::string greeting)
      : greeting_(std::move(greeting)), listener_(::socket(AF_UNIX, SOCK_STREAM, 0)) {
    sockaddr_un name{};
    name.sun_family = AF_UNIX;
    path().copy(name.sun_path, sizeof name.sun_path - 1);
    if (::bind(listener_, reinterpret_cast<sockaddr*>(&name), sizeof name) != 0 || ::listen(listener_, 8) != 0) {
      throw std::runtime_error("no socket");
    }
    thread_ = std::thread([this] {
      for (int peer = ::accept(listener_, nullptr, nullptr); peer >= 0; peer = ::accept(listener_, nullptr, nullptr)) {
        ::send(peer, greeting_.data(), greeting_.size(), MSG_NOSIGNAL);
        peers_.push_back(peer);
      }
    });
  }
  FalseBus(const FalseBus&) = delete;
  FalseBus& operator=(const FalseBus&) = delete;
  ~FalseBus() {
    ::shutdown(listener_, SHUT_RDWR);
    thread_.join();
    for (const int peer : peers_) ::close(peer);
    ::close(listener_);
  }

  std::string address() const { return "unix:path=" + path(); }

 private:
  std::string path() const { return folder_.path() / "socket"; }

  const test::TemporaryFolder folder_;
  const std::string greeting_;
  const int listener_;
  std::vector<int> peers_;
  std::thread thread_;
};

}  // namespace quillon::test
