// The host of a link in the one form in which hosts are compared.
#pragma once

#include <expected>
#include <string>
#include <string_view>

#include "ui/Common/WebView/LinkRefusal.h"

namespace quillon {

struct LinkHost {
  std::string text;        // a name in lower-case ASCII, IPv4 in decimal, or IPv6 in brackets
  bool isAddress = false;  // an IP address: it has no sub-domains

  bool operator==(const LinkHost&) const = default;
};

// Reads a host as it stands in an address. Programs disagree about many odd hosts, and one that is read differently
// here and by the browser would pass for another: whatever has more than one reading is refused. An international name
// must be what its encoding stands for, capitals of the Latin, Greek and Cyrillic scripts aside: nothing is mapped
// (full-width letters, soft hyphens, other full stops), and an encoded label ("xn--...") must be the one that its text
// is encoded to. Underscores pass, since lists and browsers agree on them; an IPv6 address is written as RFC 5952 has
// it.
[[nodiscard]] std::expected<LinkHost, LinkRefusal> linkHost(std::string_view host);

}  // namespace quillon
