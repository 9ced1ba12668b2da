#include "core/Network/ExchangeText.h"

#include <algorithm>
#include <string_view>

#include "core/Logger/UnitLog.h"
#include "core/Text/Utf8.h"

namespace quillon {
namespace {

constexpr std::string_view tokenHeader = "X-Auth-Token";
constexpr std::string_view tokenMember = "\"x-auth-token\"";
constexpr std::string_view mask = "***";

// A header map as the platform prints dictionaries.
std::string printed(const HttpHeaders& headers) {
  if (headers.empty()) return "[:]";
  std::string text = "[";
  for (const auto& [name, value] : headers) {
    if (text.size() > 1) text += ", ";
    const bool isToken = !HeaderNameLess()(name, tokenHeader) && !HeaderNameLess()(tokenHeader, name);
    text.append("\"").append(escapedForLog(name)).append("\": \"");
    text.append(isToken ? mask : escapedForLog(value)).append("\"");
  }
  return text + "]";
}

// The body may be a configuration that could not be decoded, so its token is found by its member name, in whatever
// surroundings; of a value that does not end, all the rest is masked.
std::string withoutToken(std::string_view body) {
  std::string text;
  for (;;) {
    const auto member = body.find(tokenMember);
    if (member == std::string_view::npos) return text.append(body);
    auto value = body.find_first_not_of(" \t\r\n:", member + tokenMember.size());
    if (value == std::string_view::npos || body[value] != '"') value = member + tokenMember.size();
    text.append(body.substr(0, value));
    body.remove_prefix(value);
    if (body.empty() || body.front() != '"') continue;
    text.append("\"").append(mask);
    std::size_t end = 1;
    while (end < body.size() && body[end] != '"') end += body[end] == '\\' ? 2 : 1;
    body.remove_prefix(std::min(end, body.size()));
  }
}

}  // namespace

std::string exchangeText(const HttpRequest& request, const HttpResponse& response) {
  std::string text = "\nURLRequest: {\n";
  text += "  URL: " + escapedForLog(request.url) + "\n";
  text += "  HTTP Method: " + escapedForLog(request.method) + "\n";
  text += "  Headers: " + printed(request.headers) + "\n";
  if (request.body && isUtf8(*request.body)) {
    text += "  Body: " + escapedForLog(withoutToken(*request.body)) + "\n";
  } else {
    text += "  Body: nil\n";
  }
  text += "}\nURLResponse: {\n";
  text += "  URL: " + escapedForLog(response.url) + "\n";
  text += "  Status Code: " + std::to_string(response.status.value_or(-999)) + "\n";
  text += "  Headers: " + printed(response.headers) + "\n}\n";
  text += isUtf8(response.body) ? "Data: { " + escapedForLog(withoutToken(response.body)) + " }"
                                : "Data: { Non-UTF8 data }";
  return text;
}

}  // namespace quillon
