// Strict parsing of link URLs.
#pragma once

#include <cstddef>
#include <expected>
#include <optional>
#include <string>
#include <string_view>

#include "ui/Common/WebView/LinkHost.h"

namespace quillon {

inline constexpr std::size_t longestLink = 8192;  // bytes, before and after normalisation

struct LinkAddress {
  // Normalized scheme and host, a non-empty path, percent-encoded non-ASCII characters; everything else as written.
  // Idempotent.
  std::string text;
  LinkHost host;
};

// Parses an absolute http or https URL; spaces at the ends are ignored. Follows RFC 3986, and rejects everything that
// parsers read differently: user names, backslashes, unusual hosts and ports.
[[nodiscard]] std::expected<LinkAddress, LinkRefusal> parseLink(std::string_view address);

// The host of a URL of any scheme, or without one ("//example.org"); nullopt if missing or invalid.
[[nodiscard]] std::optional<LinkHost> hostIn(std::string_view reference);

}  // namespace quillon
