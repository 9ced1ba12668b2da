// Errors between a request and its decoded response.
#pragma once

#include <string>
#include <variant>

#include "platform/HostApplication.h"
#include "platform/HttpSession.h"

namespace quillon {

struct NetworkError {
  enum class Case {
    response,
    invalidPath,
    badUrl,
    invalidStatusCode,
    decodingError,
    invalidURL,
    keyMapping,
    cdnNotModified,
  };

  Case kind;
  std::string message = {};  // of invalidPath, badUrl, decodingError and invalidURL
  int code = 0;              // of invalidStatusCode; -999 for a response that is not HTTP

  // The text for logs.
  std::string description() const;
  // The text for users, translated by the host application if it can.
  std::string localizedDescription(const HostApplication& host) const;

  bool operator==(const NetworkError&) const = default;
};

// Why a request failed: our error, or the transport's, unchanged.
using RequestFailure = std::variant<NetworkError, TransportError>;

[[nodiscard]] std::string description(const RequestFailure& failure);

}  // namespace quillon
