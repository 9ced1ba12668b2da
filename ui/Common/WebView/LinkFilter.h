// The allow list of the in-app web view.
#pragma once

#include <cstddef>
#include <expected>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "ui/Common/WebView/LinkHost.h"
#include "ui/Common/WebView/LinkRefusal.h"

namespace quillon {

// Allows http and https URLs whose host is listed or a sub-domain of a listed name. Rejects everything that parseLink()
// and linkHost() reject. Immutable and thread-safe. The time of a test depends on the URL's length, not on the size of
// the list.
class LinkFilter {
 public:
  static constexpr std::size_t mostEntries = 10'000;

  // Each entry is a host or a URL with one. Other entries allow nothing: empty or blank ones, hosts with a leading or
  // trailing dot, wildcards ("*.example.org"), incomplete URLs ("example.org/path"). An IP address matches exactly. A
  // name allows all its sub-domains, even "org". Entries beyond mostEntries are ignored.
  explicit LinkFilter(const std::vector<std::string>& entries);

  // The normalized URL to give to a browser, never the original text; or why it is refused.
  [[nodiscard]] std::expected<std::string, LinkRefusal> test(std::string_view address) const;

 private:
  struct Hash : std::hash<std::string_view> {
    using is_transparent = void;
  };

  [[nodiscard]] bool allows(const LinkHost& host) const;

  std::unordered_set<std::string, Hash, std::equal_to<>> hosts_;
};

}  // namespace quillon
