// Extracts the hosts of links in HTML.
#pragma once

#include <set>
#include <string>
#include <string_view>

namespace quillon {

class WebViewUrlExtractor {
 public:
  // In lower case. Ignores links that are not URLs or have no host, and texts larger than 1 MiB. Thread-safe.
  [[nodiscard]] static std::set<std::string> extractHosts(std::string_view html);
};

}  // namespace quillon
