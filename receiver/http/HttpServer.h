#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <cstddef>
#include <expected>
#include <functional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace quillon::receiver {

struct HttpRequest {
  std::string method;
  std::string path;  // without a query
  std::vector<std::pair<std::string, std::string>> headers;
  std::string body;

  // The value of a header, by case-insensitive name; empty if missing.
  [[nodiscard]] std::string_view header(std::string_view name) const;
};

struct HttpResponse {
  int status = 200;
  std::string body = {};
  std::string type = "application/json";
  std::vector<std::pair<std::string, std::string>> headers = {};
};

// An HTTP/1.1 server on the thread that runs the context, which also calls the handler. Connections, bytes and times
// are bounded, so a thousand slow clients cost only what they have sent.
class HttpServer {
 public:
  using Respond = std::function<void(HttpResponse)>;  // from any thread, once
  using Handler = std::function<void(HttpRequest, Respond)>;

  struct Limits {
    std::size_t connections = 4096;
    std::size_t bodyBytes = std::size_t{1} << 20;       // per request
    std::size_t allBodyBytes = std::size_t{256} << 20;  // of all requests being received
    std::chrono::seconds idle{75};                      // until the next request has its headers
    std::chrono::seconds body{30};                      // from the headers to the end of the body
    std::chrono::seconds response{20};                  // until the client has received the response
  };
  // Responses sent without the handler, and the number of connections.
  struct Observer {
    std::function<void(int status)> refused;
  };

  HttpServer(boost::asio::io_context& context, Limits limits, Handler handler, Observer observer = {});
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;

  // Listens on an address such as "127.0.0.1:8090"; port 0 selects a free one. Returns the bound address.
  [[nodiscard]] std::expected<std::string, std::string> listen(const std::string& address);

  // Stops accepting; running requests are answered. Calls `ended` when the last connection has closed, at the latest
  // after `limit`, when the rest is closed.
  void stop(std::chrono::milliseconds limit, std::function<void()> ended);

  [[nodiscard]] std::size_t connections() const { return sessions_.size(); }
  [[nodiscard]] std::size_t receivedBytes() const { return receivedBytes_; }

 private:
  friend class HttpSession;

  void accept();
  void accepted(boost::system::error_code error, boost::asio::ip::tcp::socket socket);
  void closed(class HttpSession* session);

  boost::asio::io_context& context_;
  const Limits limits_;
  const Handler handler_;
  const Observer observer_;
  boost::asio::ip::tcp::acceptor acceptor_;
  boost::asio::steady_timer pause_;
  std::unordered_set<class HttpSession*> sessions_;  // each keeps itself alive during an operation
  std::size_t receivedBytes_ = 0;                    // of bodies being received or answered
  std::function<void()> ended_;
  bool stopping_ = false;
};

}  // namespace quillon::receiver
