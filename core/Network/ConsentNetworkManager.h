// Sends one request and turns the answer into a decoded value.
#pragma once

#include <expected>
#include <stop_token>
#include <string>
#include <string_view>

#include "core/Json/Codec.h"
#include "core/Network/NetworkError.h"
#include "core/Network/Responses.h"
#include "core/Persistance/UserDefaults/UserDefaultManager.h"
#include "core/Tasks/Task.h"
#include "platform/Platform.h"
#include "quillon/MainConfiguration.h"

namespace quillon {

// The name of a reply type in error messages.
template <class Reply>
inline constexpr std::string_view replyName = {};
template <>
inline constexpr std::string_view replyName<MainConfiguration> = "MainConfiguration";
template <>
inline constexpr std::string_view replyName<GenericResponse> = "GenericResponse";
template <>
inline constexpr std::string_view replyName<CurrentLocationResponse> = "CurrentLocationResponse";

// Thread-safe; keeps no state but the entity tag in the store. Several requests may be under way at once.
class ConsentNetworkManager {
 public:
  // All must outlive it. A stop request ends what is under way with a cancelled transport error.
  ConsentNetworkManager(const Platform& platform, UserDefaultManager& store, SDKLogger& logger, std::stop_token stop)
      : platform_(platform), store_(store), logger_(logger), stop_(std::move(stop)) {}

  // A success updates the stored entity tag before the body is decoded. Failures but 304, 404 and those of the
  // transport are logged in full, with the access token masked.
  template <class Reply>
  Task<std::expected<Reply, RequestFailure>> processRequest(HttpRequest request) {
    auto exchange = co_await send(std::move(request));
    if (!exchange) co_return std::unexpected(std::move(exchange.error()));
    auto reply = decode<Reply>(exchange->response.body);
    if (reply) co_return std::move(*reply);
    co_return std::unexpected(undecodable(*exchange, replyName<Reply>, reply.error()));
  }

 private:
  struct Exchange {
    HttpRequest request;
    HttpResponse response;
  };

  Task<std::expected<Exchange, RequestFailure>> send(HttpRequest request);
  RequestFailure undecodable(const Exchange& exchange, std::string_view name, const std::string& error);
  void logExchange(const HttpRequest& request, const HttpResponse& response);

  const Platform& platform_;
  UserDefaultManager& store_;
  SDKLogger& logger_;
  std::stop_token stop_;
};

}  // namespace quillon
