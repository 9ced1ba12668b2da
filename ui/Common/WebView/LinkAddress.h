// The address of a link, read strictly.
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
  // Scheme and host in their one form, a path even when none was given, letters beyond ASCII percent-encoded;
  // everything else as it was. Reading it again yields itself.
  std::string text;
  LinkHost host;
};

// A complete http or https address, spaces at its ends aside. The grammar is that of RFC 3986, and of what it leaves
// open nothing passes that programs read in different ways: no user name, no backslash, no odd host or port.
[[nodiscard]] std::expected<LinkAddress, LinkRefusal> parseLink(std::string_view address);

// The host of an address of any scheme, or of one without a scheme ("//example.org"); nothing when there is none or it
// is unsound.
[[nodiscard]] std::optional<LinkHost> hostIn(std::string_view reference);

}  // namespace quillon
