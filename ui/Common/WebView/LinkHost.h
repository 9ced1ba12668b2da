// Canonical hosts, for comparison.
#pragma once

#include <expected>
#include <string>
#include <string_view>

#include "ui/Common/WebView/LinkRefusal.h"

namespace quillon {

struct LinkHost {
  std::string text;        // lower-case ASCII name, dotted decimal IPv4, or IPv6 in brackets
  bool isAddress = false;  // an IP address, so without sub-domains

  bool operator==(const LinkHost&) const = default;
};

// Canonicalizes the host of a URL. Rejects every host that parsers interpret differently, since the browser might then
// read another host than the filter. International names must round-trip through IDNA 2008: only Latin, Greek and
// Cyrillic capitals are mapped, no full-width letters, soft hyphens or other full stops, and an encoded label
// ("xn--...") must be the encoding of its text. Underscores are allowed, since all agree on them. IPv6 addresses are
// written according to RFC 5952.
[[nodiscard]] std::expected<LinkHost, LinkRefusal> linkHost(std::string_view host);

}  // namespace quillon
