// A request's origin, which determines what may be sent there.
#pragma once

#include <expected>
#include <string>

namespace quillon {

struct HttpOrigin {
  std::string scheme;  // "http" or "https"
  std::string host;    // lower case, IPv6 addresses in brackets
  std::string port;

  bool operator==(const HttpOrigin&) const = default;

  [[nodiscard]] bool isLoopback() const;
};

// The origin of an http or https URL without user information, or a sentence saying why it has none.
std::expected<HttpOrigin, std::string> httpOrigin(const std::string& url);

}  // namespace quillon
