// Sends one request and turns the answer into a decoded value.
#pragma once

#include <expected>
#include <optional>
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

// The name of a type of answer in error messages.
template <class Value>
inline constexpr std::string_view replyName = {};
template <>
inline constexpr std::string_view replyName<MainConfiguration> = "MainConfiguration";
template <>
inline constexpr std::string_view replyName<GenericResponse> = "GenericResponse";
template <>
inline constexpr std::string_view replyName<CurrentLocationResponse> = "CurrentLocationResponse";

// A decoded answer.
template <class Value>
struct Reply {
  Value value;
  std::optional<std::string> etag;  // as the server sent it, when it can be sent back
};

// Whether an entity tag can go into a request: not empty, of bounded length, without control characters. What came from
// a server is checked before it is kept, or one answer would end all requests for good.
[[nodiscard]] bool isSendableTag(std::string_view tag);

// Thread-safe; keeps no state but the entity tag in the store. Several requests may be under way at once.
class ConsentNetworkManager {
 public:
  // All must outlive it. A stop request ends what is under way with a cancelled transport error.
  ConsentNetworkManager(const Platform& platform, UserDefaultManager& store, SDKLogger& logger, std::stop_token stop)
      : platform_(platform), store_(store), logger_(logger), stop_(std::move(stop)) {}

  // A success updates the stored entity tag before the body is decoded. Failures but 304, 404 and those of the
  // transport are logged, with the access token masked: what failed at ERROR, the exchange in full at DEBUG.
  template <class Value>
  Task<std::expected<Reply<Value>, RequestFailure>> processRequest(HttpRequest request) {
    auto exchange = co_await send(std::move(request));
    if (!exchange) co_return std::unexpected(std::move(exchange.error()));
    auto value = decode<Value>(exchange->response.body);
    if (value) co_return Reply<Value>{std::move(*value), std::move(exchange->etag)};
    co_return std::unexpected(undecodable(*exchange, replyName<Value>, value.error()));
  }

 private:
  struct Exchange {
    HttpRequest request;
    HttpResponse response;
    std::optional<std::string> etag = std::nullopt;
  };

  Task<std::expected<Exchange, RequestFailure>> send(HttpRequest request);
  RequestFailure undecodable(const Exchange& exchange, std::string_view name, const std::string& error);
  void logExchange(const std::string& text);

  const Platform& platform_;
  UserDefaultManager& store_;
  SDKLogger& logger_;
  std::stop_token stop_;
};

}  // namespace quillon
