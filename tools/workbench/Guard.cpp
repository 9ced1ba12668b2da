#include "tools/workbench/Guard.h"

#include <random>

namespace quillon::tools {

std::string Guard::newToken() {
  std::random_device device;  // the system's randomness
  std::string token;
  for (int i = 0; i < 32; ++i) token += "0123456789abcdef"[device() % 16];
  return token;
}

std::expected<std::string, Guard::Refusal> Guard::admitted(const httplib::Request& request) const {
  const std::string host = request.get_header_value("Host");
  if (host != "127.0.0.1:" + port_ && host != "localhost:" + port_) {
    return std::unexpected(Refusal{403, "this is not the host"});
  }
  // Browsers omit the header in requests without side effects.
  const bool isReading = request.method == "GET" || request.method == "HEAD";
  const std::string origin = request.get_header_value("Origin");
  if (!(isReading && origin.empty()) && origin != "http://" + host) {
    return std::unexpected(Refusal{403, "the request comes from another page"});
  }
  const std::string prefix = "/" + token_ + "/";
  if (!request.path.starts_with(prefix)) return std::unexpected(Refusal{404, "not found"});
  return request.path.substr(prefix.size());
}

void Guard::protect(httplib::Response& response) {
  response.set_header("Content-Security-Policy",
                      "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' blob: data:; "
                      "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'");
  response.set_header("X-Content-Type-Options", "nosniff");
  response.set_header("Referrer-Policy", "same-origin");
  response.set_header("Cross-Origin-Resource-Policy", "same-origin");
  response.set_header("Cross-Origin-Opener-Policy", "same-origin");
  response.set_header("Cache-Control", "no-store");
}

}  // namespace quillon::tools
