#include <algorithm>

#include "core/Configuration/ConfiguredTexts.h"
#include "core/Text/Ascii.h"
#include "tools/validate/Rules.h"
#include "ui/Common/WebView/LinkAddress.h"

namespace quillon::tools {
namespace {

// Reports a link that would not open under any list of hosts.
void expectOpens(std::string_view address, const DocumentPath& path, const Report& report) {
  const auto link = parseLink(address);
  if (link) return;
  report(path, "the web view refuses " + inQuotes(address) + ": " + std::string(reason(link.error())));
}

// Calls `visit` with the value of every href attribute; linear time.
template <class Visit>
void forEachLinkIn(std::string_view html, Visit visit) {
  constexpr std::string_view blanks = " \t\r\n\f";
  constexpr std::string_view attribute = "href";
  const std::string lower = lowerCase(std::string(html));
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
  forEachLink(configuration, DocumentPath(),
              [&report](const DocumentPath& path, std::string_view address) { expectOpens(address, path, report); });
}

void linksInTextsOpen(const MainConfiguration& configuration, const Report& report) {
  forEachText(configuration, DocumentPath(), [&report](const DocumentPath& path, const LocalizedText& text) {
    for (const auto& [language, html] : text) {
      forEachLinkIn(html, [&](std::string_view address) { expectOpens(address, path.at(language), report); });
    }
  });
}

}  // namespace quillon::tools
