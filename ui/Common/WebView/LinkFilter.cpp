#include "ui/Common/WebView/LinkFilter.h"

#include <algorithm>

#include "ui/Common/WebView/LinkAddress.h"

namespace quillon {

LinkFilter::LinkFilter(const std::vector<std::string>& entries) {
  for (std::size_t i = 0; i < std::min(entries.size(), mostEntries); ++i) {
    if (auto host = linkHost(entries[i])) hosts_.insert(std::move(host->text));
    if (auto host = hostIn(entries[i])) hosts_.insert(std::move(host->text));
  }
}

std::expected<std::string, LinkRefusal> LinkFilter::test(std::string_view address) const {
  auto link = parseLink(address);
  if (!link) return std::unexpected(link.error());
  if (!allows(link->host)) return std::unexpected(LinkRefusal::notAllowed);
  return std::move(link->text);
}

bool LinkFilter::allows(const LinkHost& host) const {
  if (host.isAddress) return hosts_.contains(host.text);
  for (std::string_view name = host.text;;) {
    if (hosts_.contains(name)) return true;
    const auto dot = name.find('.');
    if (dot == std::string_view::npos) return false;
    name.remove_prefix(dot + 1);
  }
}

}  // namespace quillon
