// Where a request goes: what may be sent there is decided by it.
#pragma once

#include <expected>
#include <string>

namespace quillon {

struct HttpOrigin {
  std::string scheme;  // "http" or "https"
  std::string host;    // in lower case, IPv6 addresses in brackets
  std::string port;

  bool operator==(const HttpOrigin&) const = default;

  [[nodiscard]] bool isLoopback() const;
};

// The origin of an http or https URL without user information, or one sentence why it is none.
std::expected<HttpOrigin, std::string> httpOrigin(const std::string& url);

}  // namespace quillon
