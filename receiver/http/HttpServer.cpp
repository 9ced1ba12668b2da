#include "receiver/http/HttpServer.h"

#include <algorithm>
#include <boost/asio/ip/address.hpp>
#include <boost/asio/post.hpp>
#include <boost/beast/core/string.hpp>
#include <charconv>
#include <memory>

#include "receiver/http/HttpSession.h"

namespace quillon::receiver {
namespace {

using boost::asio::ip::tcp;

constexpr std::chrono::milliseconds kPauseWithoutDescriptors{100};

std::expected<tcp::endpoint, std::string> endpointOf(const std::string& address) {
  const auto colon = address.rfind(':');
  std::uint16_t port = 0;
  const char* end = address.data() + address.size();
  if (colon == std::string::npos || std::from_chars(address.data() + colon + 1, end, port).ptr != end) {
    return std::unexpected(address + ": expected ADDRESS:PORT");
  }
  std::string host = address.substr(0, colon);
  if (host.starts_with('[') && host.ends_with(']')) host = host.substr(1, host.size() - 2);
  boost::system::error_code error;
  const auto ip = boost::asio::ip::make_address(host, error);
  if (error) return std::unexpected(host + ": is not an IP address");
  return tcp::endpoint(ip, port);
}

}  // namespace

std::string_view HttpRequest::header(std::string_view name) const {
  const auto found = std::ranges::find_if(
      headers, [name](const auto& header) { return boost::beast::iequals(header.first, {name.data(), name.size()}); });
  return found == headers.end() ? std::string_view() : std::string_view(found->second);
}

HttpServer::HttpServer(boost::asio::io_context& context, Limits limits, Handler handler, Observer observer)
    : context_(context),
      limits_(limits),
      handler_(std::move(handler)),
      observer_(std::move(observer)),
      acceptor_(context),
      pause_(context) {}

std::expected<std::string, std::string> HttpServer::listen(const std::string& address) {
  const auto endpoint = endpointOf(address);
  if (!endpoint) return std::unexpected(endpoint.error());
  boost::system::error_code error;
  acceptor_.open(endpoint->protocol(), error);
  if (!error) acceptor_.set_option(tcp::acceptor::reuse_address(true), error);
  if (!error) acceptor_.bind(*endpoint, error);
  if (!error) acceptor_.listen(boost::asio::socket_base::max_listen_connections, error);
  if (error) return std::unexpected(address + ": " + error.message());
  accept();
  const auto local = acceptor_.local_endpoint();
  const std::string host = local.address().to_string();
  return (local.address().is_v6() ? "[" + host + "]" : host) + ":" + std::to_string(local.port());
}

void HttpServer::stop(std::chrono::milliseconds limit, std::function<void()> ended) {
  stopping_ = true;
  boost::system::error_code ignored;
  acceptor_.close(ignored);
  if (sessions_.empty()) return ended();
  ended_ = std::move(ended);
  pause_.expires_after(limit);
  pause_.async_wait([this](boost::system::error_code error) {
    if (error) return;
    const auto rest = sessions_;
    for (HttpSession* session : rest) session->close();
    if (ended_) std::exchange(ended_, nullptr)();
  });
  const auto all = sessions_;
  for (HttpSession* session : all) session->finish();
}

void HttpServer::accept() {
  acceptor_.async_accept(
      [this](boost::system::error_code error, tcp::socket socket) { accepted(error, std::move(socket)); });
}

void HttpServer::accepted(boost::system::error_code error, tcp::socket socket) {
  if (stopping_) return;
  if (error) {
    // Probably out of descriptors, which are freed as connections end.
    pause_.expires_after(kPauseWithoutDescriptors);
    pause_.async_wait([this](boost::system::error_code cancelled) {
      if (!cancelled && !stopping_) accept();
    });
    return;
  }
  boost::system::error_code ignored;
  socket.set_option(tcp::no_delay(true), ignored);
  accept();
  // Excess connections get a response, unless there are too many of them as well.
  if (sessions_.size() >= 2 * limits_.connections) return;
  const bool isOneTooMany = sessions_.size() >= limits_.connections;
  const auto session = std::make_shared<HttpSession>(*this, std::move(socket));
  if (isOneTooMany) {
    session->turnAway();
  } else {
    session->start();
  }
}

void HttpServer::closed(HttpSession* session) {
  sessions_.erase(session);
  if (!sessions_.empty() || !ended_) return;
  pause_.cancel();
  boost::asio::post(context_, std::exchange(ended_, nullptr));
}

}  // namespace quillon::receiver
