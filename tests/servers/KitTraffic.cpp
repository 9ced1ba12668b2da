// What devices of the test kit ask for, and what the kit's servers answer, as JSON lines on standard output.
#include <boost/json.hpp>
#include <cstdio>
#include <fstream>
#include <iterator>

#include "quillon/Testing.h"
#include "testing/DeviceServers.h"

namespace {

namespace json = boost::json;
using namespace quillon;

void print(testing::DeviceServers& servers, const testing::Request& asked) {
  HttpRequest request;
  request.url = asked.url;
  request.method = asked.method;
  json::object headers;
  for (const auto& [name, value] : asked.headers) {
    request.headers[name] = value;
    headers.emplace(name, value);
  }
  if (asked.method == "POST") request.body = asked.body;
  const auto response = servers.exchange(request);
  if (!response) return;
  const json::object line{{"method", asked.method},
                          {"url", asked.url},
                          {"request_headers", headers},
                          {"request_body", asked.body},
                          {"status", response->status.value_or(0)},
                          {"headers", json::object()},
                          {"body", response->body}};
  std::puts(json::serialize(line).c_str());
}

}  // namespace

int main(int, char** argv) {
  std::ifstream file(argv[1]);
  const std::string configuration(std::istreambuf_iterator<char>(file), {});
  for (const bool isPublished : {false, true}) {
    testing::Device device;
    testing::DeviceServers servers;
    if (isPublished) {
      device.publish(configuration);
      servers.setConfiguration(configuration);
    }
    auto sdk = device.launch();
    sdk->setup(device.options());
    device.settle();
    sdk->acceptOrReject(true, [](bool) {});
    device.settle();
    device.advance(std::chrono::hours(2));
    for (const auto& request : device.requests()) print(servers, request);
  }
}
