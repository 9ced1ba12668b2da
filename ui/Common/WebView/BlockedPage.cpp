#include "ui/Common/WebView/BlockedPage.h"

#include <algorithm>
#include <array>
#include <utility>

#include "core/Json/JsonWriter.h"
#include "core/Text/Ascii.h"
#include "core/Text/ScriptText.h"
#include "core/Text/Utf8.h"
#include "ui/Common/Labels/Labels.h"
#include "ui/Common/WebView/LinkAddress.h"
#include "ui/Common/WebView/webview_blocked_page.h"

namespace quillon {
namespace {

constexpr std::size_t largestPage = std::size_t{1} << 20;
constexpr std::string_view headEnd = "</head";
constexpr std::string_view extension = "html";
constexpr std::string_view opening = "<script>var BLOCKED_URL=";
constexpr std::string_view closing = ";</script>";

std::size_t placeOfScript(std::string_view page) {
  for (auto at = page.begin();; ++at) {
    at = std::search(at, page.end(), headEnd.begin(), headEnd.end(),
                     [](char left, char right) { return lowerCase(left) == lowerCase(right); });
    if (at == page.end()) return 0;
    const auto next = static_cast<std::size_t>(at - page.begin()) + headEnd.size();
    if (next < page.size() && std::string_view(">/ \t\r\n\f").contains(page[next])) return next - headEnd.size();
  }
}

// Replaces a placeholder by a text, with HTML escaping.
void fill(std::string& page, std::string_view key, std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    constexpr std::string_view special = "&<>\"";
    constexpr std::array<std::string_view, special.size()> entities{"&amp;", "&lt;", "&gt;", "&quot;"};
    if (const auto which = special.find(c); which != std::string_view::npos) {
      escaped += entities.at(which);
    } else {
      escaped += c;
    }
  }
  const std::string place = "{{" + std::string(key) + "}}";
  const auto at = page.find(place);
  if (at != std::string::npos) page.replace(at, place.size(), escaped);
}

}  // namespace

BlockedPage::BlockedPage(std::string_view page) {
  const auto place = placeOfScript(page);
  before_.append(page.substr(0, place)).append(opening);
  after_.append(closing).append(page.substr(place));
}

BlockedPage BlockedPage::own(const std::optional<BannerConfig>& banner, std::string_view language) {
  std::string page(ownBlockedPage);
  for (const Label label : {Label::pageBlocked, Label::pageBlockedExplanation, Label::blockedAddress}) {
    fill(page, labelKeys.at(static_cast<std::size_t>(label)), labelText(label, banner, language).text);
  }
  fill(page, "language", labelText(Label::pageBlocked, banner, language).language);
  return BlockedPage(page);
}

std::optional<BlockedPage> BlockedPage::configured(std::string_view name, const HostApplication& host,
                                                   const UnitLog& log) {
  std::string_view plain = name;
  if (plain.ends_with(".html")) plain.remove_suffix(extension.size() + 1);
  if (const auto page = host.resource(plain, extension); page && page->size() <= largestPage && isUtf8(*page)) {
    return BlockedPage(*page);
  }
  log(LogLevel::warning, "WebView: " + escapedForLog(plain) + ".html not found in bundle", "configured");
  return std::nullopt;
}

std::string BlockedPage::html(std::string_view address) const {
  std::string shown(address.substr(0, longestLink));
  if (address.size() > longestLink) shown += "…";
  std::string json;
  json::writeText(json, shown);
  return before_ + scriptText(json) + after_;
}

bool BlockedPage::isPage(std::string_view html) const {
  if (html.size() < before_.size() + after_.size() || !html.starts_with(before_) || !html.ends_with(after_)) {
    return false;
  }
  html = html.substr(before_.size(), html.size() - before_.size() - after_.size());
  if (html.size() < 2 || html.front() != '"' || html.back() != '"' || html.contains('<')) return false;
  html = html.substr(1, html.size() - 2);
  // Must be a single JSON string: no unescaped quotation mark, no escape at the end.
  bool isEscaped = false;
  for (const char c : html) {
    if (c == '"' && !isEscaped) return false;
    isEscaped = c == '\\' && !isEscaped;
  }
  return !isEscaped;
}

}  // namespace quillon
