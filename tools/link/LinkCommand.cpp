#include "tools/link/LinkCommand.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "core/Logger/UnitLog.h"
#include "tools/PlainArguments.h"
#include "ui/Common/WebView/LinkFilter.h"

namespace quillon::tools {
namespace {

constexpr const char* linkFooter = R"(
Tells what the in-app web view opens, one line an address, with tabs between:
  allowed  TEXT          the normalised text that the browser is given
  refused  REASON  TEXT  the address as it was given
A HOST is an entry of WebViewConfig::allowedDomains. After the last --allowed only one HOST follows, and then addresses,
unless "--" stands in front of the addresses. "-" takes them from the lines of standard input. The exit status is 1 when
one of them is refused.

  quillon-consent link --allowed a.example --allowed b.example https://a.example/
  quillon-consent link --allowed a.example b.example -- https://a.example/)";

struct LinkOptions {
  std::vector<std::vector<std::string>> allowed;  // the arguments of each --allowed
  std::vector<std::string> addresses;             // the arguments after "--"
};

// Without "--" the last --allowed has consumed the addresses as hosts.
void separate(LinkOptions& options) {
  if (!options.addresses.empty() || options.allowed.empty()) return;
  auto& last = options.allowed.back();
  options.addresses.assign(last.begin() + 1, last.end());
  last.resize(1);
}

bool passes(const LinkFilter& filter, const std::string& address) {
  const auto link = filter.test(address);
  if (link) {
    std::cout << "allowed\t" << escapedForLog(*link) << '\n';
  } else {
    std::cout << "refused\t" << reason(link.error()) << '\t' << escapedForLog(address) << '\n';
  }
  return link.has_value();
}

bool allPass(const LinkFilter& filter, const std::vector<std::string>& addresses) {
  bool all = true;
  for (const auto& address : addresses) {
    if (address != "-") {
      all = passes(filter, address) && all;
      continue;
    }
    for (std::string line; std::getline(std::cin, line);) all = passes(filter, line) && all;
  }
  return all;
}

}  // namespace

void addLinkCommand(CLI::App& app, int& exitCode) {
  const auto options = std::make_shared<LinkOptions>();
  auto* const command = app.add_subcommand("link", "Tells which addresses the in-app web view opens");
  command->footer(linkFooter);
  command->add_option("--allowed", options->allowed, "Hosts or addresses whose pages may be shown (repeatable)");
  command->add_option("URL", options->addresses, "Addresses to test");

  command->callback([options, &exitCode] {
    separate(*options);
    if (options->addresses.empty()) throw CLI::RequiredError("URL");
    std::vector<std::string> entries;
    for (const auto& group : options->allowed) std::ranges::transform(group, std::back_inserter(entries), plain);
    std::ranges::transform(options->addresses, options->addresses.begin(), plain);
    if (!allPass(LinkFilter(entries), options->addresses)) exitCode = 1;
    if (!std::cout.flush()) {
      std::cerr << "quillon-consent link: standard output cannot be written\n";
      exitCode = 1;
    }
  });
}

}  // namespace quillon::tools
