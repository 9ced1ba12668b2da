#include "core/Network/ExchangeText.h"

#include <algorithm>
#include <string_view>

#include "core/Logger/UnitLog.h"
#include "core/Text/Utf8.h"

namespace quillon {
namespace {

constexpr const char* tokenHeader = "X-Auth-Token";
constexpr std::string_view tokenMember = "\"x-auth-token\"";
constexpr std::string_view mask = "***";

// A header map in the platform's dictionary format.
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

// Masks the token by its member name, since the body may be an undecodable configuration; an unterminated value is
// masked to the end.
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

std::string shownBody(std::string_view body, std::size_t shownBytes) {
  if (!isUtf8(body)) return "Non-UTF8 data";
  if (body.size() <= shownBytes) return escapedForLog(withoutToken(body));
  const std::string size = std::to_string(body.size()) + " bytes";
  return shownBytes == 0 ? size : escapedForLog(withoutToken(body).substr(0, shownBytes)) + "… (" + size + ")";
}

}  // namespace

std::string withoutEcho(std::string text, std::string_view token) {
  if (token.empty()) return text;
  for (auto at = text.find(token); at != std::string::npos; at = text.find(token, at + mask.size())) {
    text.replace(at, token.size(), mask);
  }
  return text;
}

std::string exchangeText(const HttpRequest& request, const HttpResponse& response, std::size_t shownBytes) {
  std::string text = "\nURLRequest: {\n";
  text += "  URL: " + escapedForLog(request.url) + "\n";
  text += "  HTTP Method: " + escapedForLog(request.method) + "\n";
  text += "  Headers: " + printed(request.headers) + "\n";
  if (request.body && isUtf8(*request.body)) {
    text += "  Body: " + escapedForLog(withoutToken(*request.body)) + "\n";
  } else {
    text += "  Body: nil\n";
  }
  text += "}\n";

  // An error page may repeat the token that the request carried.
  std::string answer = "URLResponse: {\n";
  answer += "  URL: " + escapedForLog(response.url) + "\n";
  answer += "  Status Code: " + std::to_string(response.status.value_or(-999)) + "\n";
  answer += "  Headers: " + printed(response.headers) + "\n}\n";
  answer += "Data: { " + shownBody(response.body, shownBytes) + " }";
  const auto token = request.headers.find(tokenHeader);
  return token == request.headers.end() ? text + answer : text + withoutEcho(std::move(answer), token->second);
}

}  // namespace quillon
