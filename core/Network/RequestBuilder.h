// Builds the request for an endpoint: URL, headers, entity tag, timeout.
#pragma once

#include <expected>
#include <string>

#include "core/Network/EndPoints.h"
#include "core/Network/NetworkError.h"
#include "core/Persistance/UserDefaults/UserDefaultManager.h"
#include "platform/HttpSession.h"

namespace quillon {

// For one request.
class RequestBuilder {
 public:
  RequestBuilder(EndPoint endPoint, std::string baseURL)
      : endPoint_(std::move(endPoint)), baseURL_(std::move(baseURL)) {}

  // Adds the stored entity tag for every endpoint. Fails with invalidURL when the base URL, or the base URL with the
  // path appended, is not a URL.
  std::expected<HttpRequest, NetworkError> build(const UserDefaultManager& store) &&;

 private:
  EndPoint endPoint_;
  std::string baseURL_;
};

}  // namespace quillon
