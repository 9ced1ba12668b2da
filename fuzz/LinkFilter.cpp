// An address and the entries of an allow-list: one line for each entry, then the address.
#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/Check.h"
#include "ui/Common/WebView/LinkAddress.h"
#include "ui/Common/WebView/LinkFilter.h"

namespace {

// The host between the slashes and the port, found without a parser.
std::string_view hostOf(std::string_view link) {
  link.remove_prefix(link.find("//") + 2);
  link = link.substr(0, link.find('/'));
  const auto end = link.starts_with('[') ? link.find(']') + 1 : link.find(':');
  return link.substr(0, end);
}

// Some entry, read leniently, is the host or what follows one of its dots.
bool isNamed(std::string_view host, const std::vector<std::string>& entries) {
  return std::ranges::any_of(entries, [host](const std::string& entry) {
    const auto whole = quillon::linkHost(entry);
    const auto part = quillon::hostIn(entry);
    for (const auto& name : {whole ? whole->text : std::string(), part ? part->text : std::string()}) {
      if (!name.empty() && (host == name || host.ends_with("." + name))) return true;
    }
    return false;
  });
}

}  // namespace

using quillon::fuzz::check;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  std::vector<std::string> entries;
  for (auto end = rest.find('\n'); end != std::string_view::npos; end = rest.find('\n')) {
    entries.emplace_back(rest.substr(0, end));
    rest.remove_prefix(end + 1);
  }
  const quillon::LinkFilter filter(entries);
  const auto link = filter.test(rest);
  if (!link) {
    check(!quillon::reason(link.error()).empty(), "a refusal has a reason");
    return 0;
  }
  check(link->starts_with("http://") || link->starts_with("https://"), "only http and https are allowed");
  check(link->size() <= quillon::longestLink, "the length is bounded");
  check(std::ranges::all_of(*link, [](char c) { return c > 0x20 && c < 0x7f && c != '\\'; }), "it is plain ASCII");
  check(isNamed(hostOf(*link), entries), "an entry names the host");
  check(filter.test(*link) == *link, "the normalised text is allowed and stays as it is");
  const auto again = quillon::parseLink(*link);
  check(again && again->host.text == hostOf(*link), "it is read as it is written");
  return 0;
}
