// The three server requests.
#pragma once

#include <expected>
#include <string>

#include "core/ConsentSDK/Session.h"
#include "core/Network/ConsentNetworkManager.h"
#include "core/Network/EndPoints.h"

namespace quillon {

template <class Value>
using Answer = std::expected<Reply<Value>, RequestFailure>;

// Thread-safe and stateless.
class ServerApi {
 public:
  // All must outlive it.
  ServerApi(const Platform& platform, UserDefaultManager& store, SDKLogger& logger, std::stop_token stop)
      : platform_(platform), store_(store), logger_(logger), network_(platform, store, logger, std::move(stop)) {}

  // The configuration in the session's language; the default file when the server has none in that language.
  Task<Answer<MainConfiguration>> getCDN(SessionPointer session);
  // The device's location; a failure is logged.
  Task<std::optional<CurrentLocationResponse>> getCurrentLocation();
  // Sends decisions to the application server at base URL `url`. The message of the answer is safe to log.
  Task<Answer<GenericResponse>> postConsents(std::string url, PostConsentsRequest request);

 private:
  template <class Value>
  Task<Answer<Value>> send(EndPoint endPoint, std::string url);

  const Platform& platform_;
  UserDefaultManager& store_;
  SDKLogger& logger_;
  ConsentNetworkManager network_;
};

}  // namespace quillon
