// Sends a request and decodes the response.
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

// The response type's name in error messages.
template <class Value>
inline constexpr std::string_view replyName = {};
template <>
inline constexpr std::string_view replyName<MainConfiguration> = "MainConfiguration";
template <>
inline constexpr std::string_view replyName<GenericResponse> = "GenericResponse";
template <>
inline constexpr std::string_view replyName<CurrentLocationResponse> = "CurrentLocationResponse";

// A decoded response.
template <class Value>
struct Reply {
  Value value;
  std::optional<std::string> etag;  // the server's entity tag, if isSendableTag()
};

// Whether an entity tag may go into a request: not empty, of bounded length, no control characters. Checked before it
// is stored, or one bad response would break all later requests.
[[nodiscard]] bool isSendableTag(std::string_view tag);

// Thread-safe; its only state is the entity tag in the store. Requests may run concurrently.
class ConsentNetworkManager {
 public:
  // All must outlive it. A stop request ends running requests with a cancelled transport error.
  ConsentNetworkManager(const Platform& platform, UserDefaultManager& store, SDKLogger& logger, std::stop_token stop)
      : platform_(platform), store_(store), logger_(logger), stop_(std::move(stop)) {}

  // A success updates the stored entity tag before decoding the body. Failures except 304, 404 and transport errors are
  // logged with the access token masked: the error at ERROR, the full exchange at DEBUG.
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
