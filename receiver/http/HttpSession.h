#pragma once

#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http.hpp>
#include <memory>
#include <optional>

#include "receiver/http/HttpServer.h"

namespace quillon::receiver {

// One connection and its sequential requests. Keeps itself alive during an operation.
class HttpSession : public std::enable_shared_from_this<HttpSession> {
 public:
  HttpSession(HttpServer& server, boost::asio::ip::tcp::socket socket);
  ~HttpSession();
  HttpSession(const HttpSession&) = delete;
  HttpSession& operator=(const HttpSession&) = delete;

  void start() { readHeader(); }
  // Responds with 503 and closes.
  void turnAway();
  // Closes now if idle, else after the response.
  void finish();
  void close();

 private:
  using Body = boost::beast::http::basic_dynamic_body<boost::beast::flat_buffer>;

  void readHeader();
  void headerRead(boost::system::error_code error);
  void readBody();
  void bodyRead(boost::system::error_code error);
  void handle();
  // A reference for other threads. The last copy is released on the session's own thread, which destroys the session.
  std::shared_ptr<void> referenceForOtherThreads();
  void respond(HttpResponse response);
  void refuse(int status, const char* message);
  void written(boost::system::error_code error);
  void drain();
  void countReceived();

  HttpServer& server_;
  boost::beast::tcp_stream stream_;
  boost::beast::flat_buffer buffer_;
  std::optional<boost::beast::http::request_parser<Body>> parser_;
  std::optional<boost::beast::http::response<boost::beast::http::string_body>> response_;
  std::size_t counted_ = 0;  // bytes of this request counted in the server's total
  bool keepAlive_ = false;
  bool isIdle_ = true;
};

}  // namespace quillon::receiver
