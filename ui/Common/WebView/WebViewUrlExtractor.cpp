#include "ui/Common/WebView/WebViewUrlExtractor.h"

#include <re2/re2.h>

#include <cstddef>
#include <cstdlib>

#include "ui/Common/WebView/LinkAddress.h"

namespace quillon {
namespace {

constexpr std::size_t largestScannedPage = std::size_t{1} << 20;

const RE2& linkPattern() {
  static const RE2 pattern = [] {
    RE2::Options options(RE2::Latin1);  // byte-wise: the text need not be valid UTF-8
    options.set_case_sensitive(false);
    return RE2("href=[\"']([^\"']+)[\"']", options);
  }();
  if (!pattern.ok()) std::abort();  // the error has been written to standard error
  return pattern;
}

}  // namespace

std::set<std::string> WebViewUrlExtractor::extractHosts(std::string_view html) {
  std::set<std::string> hosts;
  if (html.size() > largestScannedPage) return hosts;
  re2::StringPiece rest(html.data(), html.size());
  re2::StringPiece link;
  while (RE2::FindAndConsume(&rest, linkPattern(), &link)) {
    if (auto host = hostIn(std::string_view(link.data(), link.size()))) hosts.insert(std::move(host->text));
  }
  return hosts;
}

}  // namespace quillon
