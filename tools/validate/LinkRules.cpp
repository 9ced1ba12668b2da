#include <algorithm>
#include <boost/url/parse.hpp>

#include "tools/validate/LocalizedTexts.h"
#include "tools/validate/Rules.h"

namespace quillon::tools {
namespace {

// Why the in-app web view would open it for no host at all; empty when it might.
std::string_view refusal(std::string_view address) {
  const auto first = std::min(address.find_first_not_of(' '), address.size());
  std::string ascii(address.substr(first, address.find_last_not_of(' ') + 1 - first));
  if (ascii.empty()) return "it is empty";
  // Other letters than those of ASCII may stand in a link; whether they can be mapped is for the web view to find out.
  std::ranges::replace_if(ascii, [](char c) { return (static_cast<unsigned char>(c) & 0x80) != 0; }, 'x');
  const auto url = boost::urls::parse_uri(ascii);
  if (!url) return "it is not a complete address";
  if (url->scheme_id() != boost::urls::scheme::http && url->scheme_id() != boost::urls::scheme::https) {
    return "it is neither http nor https";
  }
  if (url->has_userinfo()) return "it carries a user name";
  if (url->encoded_host().empty()) return "it names no host";
  return {};
}

void expectOpens(std::string_view address, const DocumentPath& path, const Report& report) {
  if (const auto reason = refusal(address); !reason.empty()) {
    report({path.text(), "the web view refuses " + inQuotes(address) + ": " + std::string(reason)});
  }
}

void expectOpens(const std::optional<std::string>& address, const DocumentPath& path, const Report& report) {
  if (address) expectOpens(std::string_view(*address), path, report);
}

// Calls back with the value of every attribute href; looks at each byte a bounded number of times.
template <class Visit>
void forEachLink(std::string_view html, Visit visit) {
  constexpr std::string_view blanks = " \t\r\n\f";
  constexpr std::string_view attribute = "href";
  std::string lower(html);
  std::ranges::transform(html, lower.begin(),
                         [](char c) { return static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c); });
  const auto skipBlanks = [&](std::size_t at) { return std::min(html.find_first_not_of(blanks, at), html.size()); };
  for (std::size_t at = 0; (at = lower.find(attribute, at)) != std::string::npos;) {
    const bool begins = at > 0 && (blanks.contains(html[at - 1]) || std::string_view("/'\"").contains(html[at - 1]));
    at = skipBlanks(at + attribute.size());
    if (!begins || at == html.size() || html[at] != '=') continue;
    at = skipBlanks(at + 1);
    std::string_view ends = " \t\r\n\f>";
    if (at < html.size() && (html[at] == '"' || html[at] == '\'')) ends = html.substr(at++, 1);
    const auto end = std::min(html.find_first_of(ends, at), html.size());
    visit(html.substr(at, end - at));
    at = end;
  }
}

}  // namespace

void linksOpen(const MainConfiguration& configuration, const Report& report) {
  const DocumentPath root;
  for (std::size_t i = 0; configuration.purposes && i < configuration.purposes->size(); ++i) {
    const auto& sdks = (*configuration.purposes)[i].sdks;
    for (std::size_t j = 0; sdks && j < sdks->size(); ++j) {
      expectOpens((*sdks)[j].website, root.at("purposes").at(i).at("sdks").at(j).at("website"), report);
    }
  }
  if (!configuration.bannerConfig) return;
  for (const auto& [name, banner] : configuration.bannerConfig->categories) {
    const auto path = root.at("banner_config").at("categories").at(name);
    expectOpens(banner.privacyNoticeLink, path.at("privacy_notice_link"), report);
    expectOpens(banner.dsrPortalLink, path.at("dsr_portal_link"), report);
  }
}

void linksInTextsOpen(const MainConfiguration& configuration, const Report& report) {
  forEachText(configuration, [&report](const DocumentPath& path, const LocalizedText& text) {
    for (const auto& [language, html] : text) {
      forEachLink(html, [&](std::string_view address) { expectOpens(address, path.at(language), report); });
    }
  });
}

}  // namespace quillon::tools
