// Access control of the workbench: only the page opened by the local user is admitted.
#pragma once

#include <expected>
#include <string>

#include <httplib.h>

namespace quillon::tools {

// Immutable and thread-safe.
class Guard {
 public:
  // The token is the first segment of every path.
  Guard(int port, std::string token) : port_(std::to_string(port)), token_(std::move(token)) {}

  // 128 random bits.
  [[nodiscard]] static std::string newToken();

  struct Refusal {
    int status;
    const char* text;
  };
  // The path after the token, without the slash; or the response. Rejects a foreign `Host`, as with DNS rebinding, and
  // a foreign `Origin`, as in requests of other sites' pages.
  [[nodiscard]] std::expected<std::string, Refusal> admitted(const httplib::Request& request) const;

  // Restricts the page to its own scripts and server, forbids embedding it in a frame, and disables caching.
  static void protect(httplib::Response& response);

 private:
  const std::string port_;
  const std::string token_;
};

}  // namespace quillon::tools
