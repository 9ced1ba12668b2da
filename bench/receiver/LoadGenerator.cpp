#include "bench/receiver/LoadGenerator.h"

#include <boost/asio.hpp>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace quillon::bench {
namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using std::chrono::steady_clock;

class Client {
 public:
  Client(asio::io_context& context, int port, steady_clock::time_point end, LoadResult& result)
      : socket_(context), end_(end), result_(result), random_(std::random_device()()) {
    socket_.connect({asio::ip::address_v4::loopback(), static_cast<std::uint16_t>(port)});
    socket_.set_option(tcp::no_delay(true));
  }

  void next() {
    if (steady_clock::now() >= end_) return;
    const std::string body =
        R"({"uuid":"device-)" + std::to_string(random_() >> 1) +
        R"(","app_uuid":"reader","device":"Linux","implicit_consent":false,"version":3,"purpose_consents":[{"purpose_id":2,)"
        R"("consent_status":"granted","timestamp":1700000000,"is_essential":false}],"permissions":[],"is_test_mode":false,)"
        R"("ad_id":"","platform":"ios","banner_info":"opt-in"})";
    request_ =
        "POST /vantari/v1/consent/mobile/singleupload HTTP/1.1\r\nHost: localhost\r\nX-Auth-Token: "
        "t\r\nContent-Length: " +
        std::to_string(body.size()) + "\r\n\r\n" + body;
    answer_.clear();
    asio::async_write(socket_, asio::buffer(request_), [this](auto error, std::size_t) {
      if (!error) hear();
    });
  }

 private:
  void hear() {
    socket_.async_read_some(asio::buffer(chunk_), [this](auto error, std::size_t count) {
      if (error) return;
      answer_.append(chunk_, count);
      if (!answer_.ends_with('}')) return hear();
      ++(answer_.starts_with("HTTP/1.1 200") ? result_.acknowledged : result_.failed);
      next();
    });
  }

  tcp::socket socket_;
  const steady_clock::time_point end_;
  LoadResult& result_;
  std::mt19937_64 random_;
  std::string request_;
  std::string answer_;
  char chunk_[1024];
};

}  // namespace

LoadResult uploadTo(int port, const Load& load) {
  asio::io_context context(1);
  LoadResult result;
  const auto begin = steady_clock::now();
  std::vector<std::unique_ptr<Client>> clients;
  for (int i = 0; i < load.clients; ++i) {
    clients.push_back(std::make_unique<Client>(context, port, begin + load.duration, result));
    clients.back()->next();
  }
  context.run();
  result.seconds = std::chrono::duration<double>(steady_clock::now() - begin).count();
  return result;
}

}  // namespace quillon::bench
