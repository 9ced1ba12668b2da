// Who may talk to the workbench: the page that the person at this machine opened, and nobody else.
#pragma once

#include <expected>
#include <string>

#include <httplib.h>

namespace quillon::tools {

// Immutable and thread-safe.
class Guard {
 public:
  // The token is the first part of every address.
  Guard(int port, std::string token) : port_(std::to_string(port)), token_(std::move(token)) {}

  // 128 random bits.
  [[nodiscard]] static std::string newToken();

  struct Refusal {
    int status;
    const char* text;
  };
  // The path behind the token, without its slash; else the answer. A foreign `Host` is refused, which a name that leads
  // to this machine would bring along, and a foreign `Origin`, which another site's page would.
  [[nodiscard]] std::expected<std::string, Refusal> admitted(const httplib::Request& request) const;

  // No script but the page's own, no other server, no frame around it, nothing kept.
  static void protect(httplib::Response& response);

 private:
  const std::string port_;
  const std::string token_;
};

}  // namespace quillon::tools
