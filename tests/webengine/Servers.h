// The two servers that pages talk to: one that may be reached and one that must not.
#pragma once

#include <gtest/gtest.h>
#include <httplib.h>

#include <QNetworkDatagram>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUdpSocket>
#include <atomic>
#include <map>
#include <mutex>
#include <string>
#include <thread>

namespace quillon::test {

// Serves pages by their paths and remembers what it was asked.
class AllowedServer {
 public:
  AllowedServer() {
    server_.set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
      answer(request, response);
      return httplib::Server::HandlerResponse::Handled;
    });
    server_.set_keep_alive_max_count(1);  // or it would wait for silent connections when it ends
    port_ = server_.bind_to_any_port("127.0.0.1");
    thread_ = std::thread([this] { server_.listen_after_bind(); });
    while (!server_.is_running()) std::this_thread::yield();
  }
  ~AllowedServer() {
    release();
    server_.stop();
    thread_.join();
  }
  std::string url(const std::string& path = "") const { return "http://127.0.0.1:" + std::to_string(port_) + path; }

  void serve(const std::string& path, std::string body, httplib::Headers headers = {}, int status = 200) {
    const std::scoped_lock lock(mutex_);
    pages_[path] = {std::move(body), std::move(headers), status};
  }
  // From now on answers wait until release().
  void hold() { isHolding_ = true; }
  void release() {
    isHolding_ = false;
    isHolding_.notify_all();
  }

  bool saw(const std::string& path) const {
    const std::scoped_lock lock(mutex_);
    return seen_.contains(path);
  }
  // What the last request for the path had; empty when it had none.
  std::string header(const std::string& path, const char* name) const {
    const std::scoped_lock lock(mutex_);
    return seen_.contains(path) ? seen_.at(path).get_header_value(name) : "";
  }

 private:
  struct Page {
    std::string body;
    httplib::Headers headers;
    int status = 404;
  };
  void answer(const httplib::Request& request, httplib::Response& response) {
    {
      const std::scoped_lock lock(mutex_);
      seen_[request.path] = request;
    }
    isHolding_.wait(true);
    const std::scoped_lock lock(mutex_);
    const Page& page = pages_[request.path];
    response.status = page.status;
    for (const auto& [name, value] : page.headers) response.set_header(name.c_str(), value);
    response.set_header("Access-Control-Allow-Origin", "*");
    response.set_content(page.body, request.path.ends_with(".js") ? "text/javascript" : "text/html; charset=utf-8");
  }

  mutable std::mutex mutex_;
  std::atomic<bool> isHolding_ = false;
  std::map<std::string, Page> pages_;
  std::map<std::string, httplib::Request> seen_;
  httplib::Server server_;
  int port_ = 0;
  std::thread thread_;
};

// Notes whatever reaches it, be it no more than an attempt to connect.
class RefusedServer {
 public:
  RefusedServer() {
    EXPECT_TRUE(tcp_.listen(QHostAddress("127.0.0.2")));
    EXPECT_TRUE(udp_.bind(tcp_.serverAddress(), tcp_.serverPort()));
    QObject::connect(&tcp_, &QTcpServer::newConnection, [this] {
      contacts_ += "connection ";
      QTcpSocket* socket = tcp_.nextPendingConnection();
      QObject::connect(socket, &QTcpSocket::readyRead, [this, socket] {
        contacts_ += socket->readAll().split('\r').front().toStdString() + "\n";
        socket->close();
      });
    });
    QObject::connect(&udp_, &QUdpSocket::readyRead, [this] {
      contacts_ += "datagram ";
      udp_.receiveDatagram();
    });
  }
  std::string authority() const { return "127.0.0.2:" + std::to_string(tcp_.serverPort()); }
  const std::string& contacts() const { return contacts_; }

 private:
  QTcpServer tcp_;
  QUdpSocket udp_;
  std::string contacts_;
};

}  // namespace quillon::test
