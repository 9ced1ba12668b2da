// How an end point is called: address, headers, entity tag, time limit.
#pragma once

#include <expected>
#include <string>

#include "core/Network/EndPoints.h"
#include "core/Network/NetworkError.h"
#include "core/Persistance/UserDefaults/UserDefaultManager.h"
#include "platform/HttpSession.h"

namespace quillon {

// Made for one request, used once.
class RequestBuilder {
 public:
  RequestBuilder(EndPoint endPoint, std::string baseURL)
      : endPoint_(std::move(endPoint)), baseURL_(std::move(baseURL)) {}

  // Carries the stored entity tag whatever the end point. Fails with invalidURL when the base address, or the base
  // address and the path run together, are not an address.
  std::expected<HttpRequest, NetworkError> build(const UserDefaultManager& store) &&;

 private:
  EndPoint endPoint_;
  std::string baseURL_;
};

}  // namespace quillon
