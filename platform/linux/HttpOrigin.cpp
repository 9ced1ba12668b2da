#include "platform/linux/HttpOrigin.h"

#include <arpa/inet.h>
#include <curl/curl.h>

#include <algorithm>
#include <memory>

namespace quillon {
namespace {

std::string part(CURLU* url, CURLUPart which) {
  char* text = nullptr;
  if (curl_url_get(url, which, &text, CURLU_DEFAULT_PORT) != CURLUE_OK) return {};
  const std::unique_ptr<char, decltype(&curl_free)> owner(text, &curl_free);
  return text;
}

}  // namespace

bool HttpOrigin::isLoopback() const {
  in_addr address{};
  if (inet_pton(AF_INET, host.c_str(), &address) == 1) return (ntohl(address.s_addr) >> 24) == 127;
  return host == "localhost" || host == "[::1]";
}

std::expected<HttpOrigin, std::string> httpOrigin(const std::string& url) {
  const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> parsed(curl_url(), &curl_url_cleanup);
  if (!parsed) return std::unexpected("Out of memory");
  const CURLUcode code = curl_url_set(parsed.get(), CURLUPART_URL, url.c_str(), CURLU_DISALLOW_USER);
  if (code != CURLUE_OK)
    return std::unexpected(std::string("The address is no http or https URL: ") + curl_url_strerror(code));

  HttpOrigin origin{part(parsed.get(), CURLUPART_SCHEME), part(parsed.get(), CURLUPART_HOST),
                    part(parsed.get(), CURLUPART_PORT)};
  std::ranges::transform(origin.host, origin.host.begin(),
                         [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  if (origin.scheme != "http" && origin.scheme != "https") {
    return std::unexpected("The address is no http or https URL: its scheme is \"" + origin.scheme + "\"");
  }
  if (origin.host.empty()) return std::unexpected("The address names no host");
  return origin;
}

}  // namespace quillon
