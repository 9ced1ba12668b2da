// What can go wrong between a request and its decoded answer.
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
  int code = 0;              // of invalidStatusCode; -999 for an answer that is not HTTP

  // The text for logs.
  std::string description() const;
  // The text for users, in the host application's own translation when it has one.
  std::string localizedDescription(const HostApplication& host) const;

  bool operator==(const NetworkError&) const = default;
};

// Why a request gave no value: an error of ours, or the transport's own, passed on unchanged.
using RequestFailure = std::variant<NetworkError, TransportError>;

[[nodiscard]] std::string description(const RequestFailure& failure);

}  // namespace quillon
