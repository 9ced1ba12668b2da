// The hosts that a text links to are in their one form.
#include "fuzz/Check.h"
#include "ui/Common/WebView/LinkAddress.h"
#include "ui/Common/WebView/WebViewUrlExtractor.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quillon;
  const auto hosts = WebViewUrlExtractor::extractHosts({reinterpret_cast<const char*>(data), size});
  for (const auto& host : hosts) {
    fuzz::check(!host.empty(), "no host is empty");
    const auto again = hostIn("//" + host);
    fuzz::check(again && again->text == host, "reading a host again changes nothing");
  }
  fuzz::check(hosts.size() * 9 <= size, "each host stands in a link of its own");
  return 0;
}
