// The endpoints of the three requests.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "quillon/ConsentSDKOptions.h"
#include "quillon/PostConsentsRequest.h"

namespace quillon {

enum class HttpMethod { get, post, put, delete_, patch, head };
enum class HeaderParam { contentType, accept, authorization, xAuthToken, historyHead, receiptKey };
enum class QueryParam { limit };

[[nodiscard]] std::string_view rawValue(HttpMethod method) noexcept;
[[nodiscard]] std::string_view rawValue(HeaderParam header) noexcept;
[[nodiscard]] std::string_view rawValue(QueryParam parameter) noexcept;

struct EndPoint {
  HttpMethod httpMethod = HttpMethod::get;
  std::optional<std::map<QueryParam, std::string>> queryParams = std::nullopt;
  std::optional<std::map<HeaderParam, std::string>> headerParams = std::nullopt;
  std::string pathURL;  // appended to the base URL unchanged
  std::optional<std::string> body = std::nullopt;
};

// An application's configuration in one language, or its default file.
struct GetCDNEndPoint : EndPoint {
  GetCDNEndPoint(const ConsentSDKOptions& options, Mode mode, std::string_view languageCode, bool useDefaultFile);
};

// The device's location.
struct GetCurrentLocationEndPoint : EndPoint {
  GetCurrentLocationEndPoint();
};

// The upload of decisions.
struct PostConsentsEndPoint : EndPoint {
  PostConsentsEndPoint(std::string accessToken, const PostConsentsRequest& request);
};

}  // namespace quillon
