#include "proof/Page/HtmlPage.h"

namespace quillon::proof {
namespace {

using Kind = ReceiptLine::Kind;

constexpr const char* style = R"(
body { font: 1rem/1.5 sans-serif; max-width: 45rem; margin: 2rem auto; padding: 0 1rem; color: #111; background: #fff }
h1 { font-size: 1.6rem } h2 { font-size: 1.15rem; margin: 1.5rem 0 .5rem; border-bottom: 1px solid #888 }
dl { display: grid; grid-template-columns: minmax(8rem, auto) 1fr; gap: .25rem 1rem; margin: 0 }
dt { color: #444 } dd { margin: 0; overflow-wrap: anywhere }
.warning { border: 2px solid #b00; padding: .5rem; font-weight: bold }
@media print { body { margin: 0; max-width: none } h2 { break-after: avoid } }
)";

std::string escaped(std::string_view text) {
  std::string html;
  for (const char c : text) {
    switch (c) {
      case '&':
        html += "&amp;";
        break;
      case '<':
        html += "&lt;";
        break;
      case '>':
        html += "&gt;";
        break;
      case '"':
        html += "&quot;";
        break;
      case '\'':
        html += "&#39;";
        break;
      case '\n':
      case '\t':
        html += c;
        break;
      default:
        // HTML does not allow control characters.
        html += static_cast<unsigned char>(c) < 0x20 || c == 0x7f ? std::string("&#xfffd;") : std::string(1, c);
    }
  }
  return html;
}

std::string element(const std::string& tag, const std::string& text, const std::string& attributes = "") {
  return "<" + tag + attributes + " dir=\"auto\">" + escaped(text) + "</" + tag + ">\n";
}

}  // namespace

std::string htmlPage(const std::vector<ReceiptLine>& lines, std::string_view language, bool isRightToLeft) {
  std::string html = "<!DOCTYPE html>\n<html lang=\"" + escaped(language) + "\"" +
                     (isRightToLeft ? " dir=\"rtl\"" : "") +
                     ">\n<head>\n<meta charset=\"utf-8\">\n"
                     "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
                     "style-src 'unsafe-inline'\">\n"
                     "<meta name=\"viewport\" content=\"width=device-width\">\n<title>" +
                     escaped(lines.empty() ? std::string_view() : lines.front().text) + "</title>\n<style>" + style +
                     "</style>\n</head>\n<body>\n";
  bool isInList = false;
  for (const auto& line : lines) {
    const bool isFact = line.kind == Kind::fact;
    if (isFact != isInList) html += isFact ? "<dl>\n" : "</dl>\n";
    isInList = isFact;
    switch (line.kind) {
      case Kind::title:
        html += element("h1", line.text);
        break;
      case Kind::section:
        html += element("h2", line.text);
        break;
      case Kind::text:
        html += element("p", line.text);
        break;
      case Kind::warning:
        html += element("p", line.text, " class=\"warning\"");
        break;
      case Kind::fact:
        html += element("dt", line.name) + element("dd", line.text);
        break;
    }
  }
  if (isInList) html += "</dl>\n";
  return html + "</body>\n</html>\n";
}

}  // namespace quillon::proof
