// Which addresses the in-app web view opens.
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

// Allows http and https addresses whose host is on a list, or is a sub-domain of a name on it. Refuses whatever it does
// not understand: see parseLink() and linkHost(). Immutable, so any thread may ask. A question takes time by the length
// of the address, whatever the size of the list.
class LinkFilter {
 public:
  static constexpr std::size_t mostEntries = 10'000;

  // Each entry is a host or an address with one. What is neither allows nothing: empty and blank entries, hosts with a
  // dot at an end, wildcards ("*.example.org"), parts of addresses ("example.org/path"). An IP address allows itself
  // only. A name allows its sub-domains whatever it is: "org" allows every host below it. Entries after the first
  // mostEntries are left out.
  explicit LinkFilter(const std::vector<std::string>& entries);

  // The text to give to a browser, never the original; or why it is refused.
  [[nodiscard]] std::expected<std::string, LinkRefusal> test(std::string_view address) const;

 private:
  struct Hash : std::hash<std::string_view> {
    using is_transparent = void;
  };

  [[nodiscard]] bool allows(const LinkHost& host) const;

  std::unordered_set<std::string, Hash, std::equal_to<>> hosts_;
};

}  // namespace quillon
