// The hosts that an HTML text links to.
#pragma once

#include <set>
#include <string>
#include <string_view>

namespace quillon {

class WebViewUrlExtractor {
 public:
  // In lower case. Links that are no URL or name no host are left out, and so is all of a text larger than 1 MiB.
  // Thread-safe.
  [[nodiscard]] static std::set<std::string> extractHosts(std::string_view html);
};

}  // namespace quillon
