#include "receiver/http/HttpSession.h"

#include <boost/asio/dispatch.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/write.hpp>

namespace quillon::receiver {
namespace {

namespace beast = boost::beast;
namespace http = boost::beast::http;

constexpr std::size_t kMaxHeaderBytes = 16 << 10;
constexpr std::size_t kBufferBytes = 16 << 10;
constexpr std::string_view kContinue = "HTTP/1.1 100 Continue\r\n\r\n";

// Whether the client does not speak HTTP. A client that timed out or closed gets no response.
bool isNotHttp(const beast::error_code& error) {
  return error.category() == http::make_error_code(http::error::bad_method).category() &&
         error != http::error::end_of_stream && error != http::error::partial_message;
}

}  // namespace

HttpSession::HttpSession(HttpServer& server, boost::asio::ip::tcp::socket socket)
    : server_(server), stream_(std::move(socket)), buffer_(kBufferBytes) {
  server_.sessions_.insert(this);
}

HttpSession::~HttpSession() {
  server_.receivedBytes_ -= counted_;
  server_.closed(this);
}

void HttpSession::turnAway() {
  refuse(503, "too many connections");
}

void HttpSession::finish() {
  keepAlive_ = false;
  if (isIdle_) close();
}

void HttpSession::close() {
  stream_.close();
}

void HttpSession::readHeader() {
  isIdle_ = true;
  parser_.emplace();
  parser_->header_limit(kMaxHeaderBytes);
  parser_->body_limit(server_.limits_.bodyBytes);
  stream_.expires_after(server_.limits_.idle);
  http::async_read_header(
      stream_, buffer_, *parser_,
      [self = shared_from_this()](beast::error_code error, std::size_t) { self->headerRead(error); });
}

void HttpSession::headerRead(boost::system::error_code error) {
  if (error == http::error::body_limit) return refuse(413, "the body is too large");
  if (error == http::error::header_limit || error == http::error::buffer_overflow) {
    return refuse(431, "the headers are too large");
  }
  if (isNotHttp(error)) return refuse(400, "is not HTTP");
  if (error) return close();
  isIdle_ = false;
  keepAlive_ = parser_->get().keep_alive() && !server_.stopping_;
  stream_.expires_after(server_.limits_.body);
  if (!beast::iequals(parser_->get()[http::field::expect], "100-continue")) return readBody();
  boost::asio::async_write(stream_, boost::asio::buffer(kContinue),
                           [self = shared_from_this()](beast::error_code failure, std::size_t) {
                             if (failure) return self->close();
                             self->readBody();
                           });
}

// Reads in parts, so that memory grows with what was sent, not with what was announced.
void HttpSession::readBody() {
  if (parser_->is_done()) return handle();
  http::async_read_some(stream_, buffer_, *parser_,
                        [self = shared_from_this()](beast::error_code error, std::size_t) { self->bodyRead(error); });
}

void HttpSession::bodyRead(boost::system::error_code error) {
  if (error == http::error::body_limit) return refuse(413, "the body is too large");
  if (isNotHttp(error)) return refuse(400, "is not HTTP");
  if (error) return close();
  countReceived();
  if (server_.receivedBytes_ > server_.limits_.allBodyBytes) return refuse(503, "too much at once");
  readBody();
}

void HttpSession::countReceived() {
  const std::size_t now = parser_->get().body().size();
  server_.receivedBytes_ += now - counted_;
  counted_ = now;
}

void HttpSession::handle() {
  auto message = parser_->release();
  HttpRequest request;
  request.method = std::string(message.method_string());
  request.path = std::string(message.target());
  request.path.resize(std::min(request.path.find('?'), request.path.size()));
  for (const auto& field : message) request.headers.emplace_back(field.name_string(), field.value());
  const auto body = message.body().cdata();
  request.body.assign(static_cast<const char*>(body.data()), body.size());
  parser_.reset();
  // The handler bounds its own time.
  stream_.expires_never();
  server_.handler_(std::move(request), [this, kept = referenceForOtherThreads()](HttpResponse response) {
    boost::asio::post(stream_.get_executor(),
                      [this, kept, response = std::move(response)]() mutable { respond(std::move(response)); });
  });
}

std::shared_ptr<void> HttpSession::referenceForOtherThreads() {
  auto* const reference = new std::shared_ptr<HttpSession>(shared_from_this());
  return {reference, [](std::shared_ptr<HttpSession>* last) {
            auto executor = (*last)->stream_.get_executor();
            boost::asio::dispatch(executor, [owned = std::unique_ptr<std::shared_ptr<HttpSession>>(last)] {});
          }};
}

void HttpSession::refuse(int status, const char* message) {
  keepAlive_ = false;
  if (server_.observer_.refused) server_.observer_.refused(status);
  HttpResponse response{.status = status, .body = std::string(R"({"status":1,"message":")") + message + "\"}"};
  if (status == 503) response.headers.emplace_back("Retry-After", "30");
  respond(std::move(response));
}

void HttpSession::respond(HttpResponse response) {
  isIdle_ = false;
  keepAlive_ = keepAlive_ && !server_.stopping_;
  response_.emplace(static_cast<http::status>(response.status), 11);
  response_->set(http::field::content_type, response.type);
  response_->set(http::field::cache_control, "no-store");
  for (const auto& [name, value] : response.headers) response_->set(name, value);
  response_->keep_alive(keepAlive_);
  response_->body() = std::move(response.body);
  response_->prepare_payload();
  server_.receivedBytes_ -= std::exchange(counted_, 0);
  stream_.expires_after(server_.limits_.response);
  http::async_write(stream_, *response_,
                    [self = shared_from_this()](beast::error_code error, std::size_t) { self->written(error); });
}

void HttpSession::written(boost::system::error_code error) {
  response_.reset();
  if (error || server_.stopping_) return close();
  if (keepAlive_) return readHeader();
  beast::error_code ignored;
  stream_.socket().shutdown(boost::asio::ip::tcp::socket::shutdown_send, ignored);
  // Drains input for a moment, so that a client still sending can read the response.
  stream_.expires_after(std::chrono::seconds(2));
  drain();
}

void HttpSession::drain() {
  buffer_.clear();
  stream_.async_read_some(buffer_.prepare(kBufferBytes / 2),
                          [self = shared_from_this()](beast::error_code error, std::size_t) {
                            if (error || self->server_.stopping_) return self->close();
                            self->drain();
                          });
}

}  // namespace quillon::receiver
