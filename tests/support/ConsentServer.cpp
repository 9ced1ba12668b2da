#include "tests/support/ConsentServer.h"

#include <algorithm>

namespace quillon::test {

ConsentServer::Handler json(std::string body, int status) {
  return [body = std::move(body), status](const httplib::Request&, httplib::Response& response) {
    response.status = status;
    response.set_content(body, "application/json");
  };
}

ConsentServer::ConsentServer() : configuration_(json("{}", 404)), location_(json("{}", 404)), upload_(json(saved)) {
  const auto route = [this](Handler& place) {
    return [this, &place](const httplib::Request& request, httplib::Response& response) {
      answer(place, request, response);
    };
  };
  server_.Get("/consent/mobile_banner/.*", route(configuration_));
  server_.Get("/core/v1/utils/geo/location", route(location_));
  server_.Post("/vantari/v1/consent/mobile/singleupload", route(upload_));
  port_ = server_.bind_to_any_port("127.0.0.1");
  thread_ = std::thread([this] { server_.listen_after_bind(); });
  while (!server_.is_running()) std::this_thread::yield();
}

ConsentServer::~ConsentServer() {
  server_.stop();
  thread_.join();
}

std::string ConsentServer::url() const {
  return "http://127.0.0.1:" + std::to_string(port_) + "/";
}

void ConsentServer::set(Handler& place, Handler handler) {
  const std::scoped_lock lock(mutex_);
  place = std::move(handler);
}

void ConsentServer::answer(const Handler& place, const httplib::Request& request, httplib::Response& response) {
  Handler handler;
  {
    const std::scoped_lock lock(mutex_);
    seen_.push_back({request.method, request.path, request.headers, request.body});
    handler = place;
  }
  handler(request, response);
}

void ConsentServer::serve(std::string document, std::string tag) {
  onConfiguration([document = std::move(document), tag = std::move(tag)](const auto& request, auto& response) {
    if (!tag.empty() && request.get_header_value("If-None-Match") == tag) {
      response.status = 304;
      return;
    }
    if (!tag.empty()) response.set_header("ETag", tag);
    response.set_content(document, "application/json");
  });
}

std::vector<ConsentServer::Seen> ConsentServer::seen(std::string_view pathPart) const {
  const std::scoped_lock lock(mutex_);
  std::vector<Seen> matching;
  std::ranges::copy_if(seen_, std::back_inserter(matching),
                       [&](const Seen& request) { return request.path.find(pathPart) != std::string::npos; });
  return matching;
}

ConsentServer::Handler located(const std::string& country, const std::string& state) {
  return json(R"({"status":0,"message":"","data":{"City":{},"Continent":{},"Country":{},"CountryISOCode":)" + country +
              R"(,"Language":{},"Location":{},"RegisteredCountry":{},"State":{},"StateISOCode":)" + state + "}}");
}

}  // namespace quillon::test
