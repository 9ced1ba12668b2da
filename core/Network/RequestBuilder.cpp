#include "core/Network/RequestBuilder.h"

#include <boost/url/parse.hpp>
#include <boost/url/url.hpp>

#include "core/Network/ConsentNetworkManager.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"

namespace quillon {
namespace {

constexpr std::chrono::seconds timeLimit{60};

}  // namespace

std::expected<HttpRequest, NetworkError> RequestBuilder::build(const UserDefaultManager& store) && {
  if (!boost::urls::parse_uri(baseURL_)) return std::unexpected(NetworkError{NetworkError::Case::invalidURL, baseURL_});

  const std::string address = baseURL_ + endPoint_.pathURL;
  const auto parsed = boost::urls::parse_uri(address);
  if (!parsed) return std::unexpected(NetworkError{NetworkError::Case::invalidURL, address});
  boost::urls::url url(*parsed);
  if (endPoint_.queryParams) {
    url.params().clear();
    for (const auto& [name, value] : *endPoint_.queryParams) url.params().append({rawValue(name), value});
  }

  HttpRequest request;
  request.url = std::string(url.buffer());
  request.method = std::string(rawValue(endPoint_.httpMethod));
  request.timeout = timeLimit;
  request.headers = {{"Content-Type", "application/json"}, {"Accept", "*/*"}};
  if (endPoint_.headerParams) {
    for (auto& [name, value] : *endPoint_.headerParams) {
      request.headers.insert_or_assign(std::string(rawValue(name)), std::move(value));
    }
  }
  const auto tag = StoredValues(*store.snapshot()).string(key::etag);
  if (tag && isSendableTag(*tag)) request.headers["If-None-Match"] = *tag;
  request.body = std::move(endPoint_.body);
  return request;
}

}  // namespace quillon
