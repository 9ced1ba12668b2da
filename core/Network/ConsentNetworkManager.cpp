#include "core/Network/ConsentNetworkManager.h"

#include <optional>
#include <utility>

#include "core/Logger/UnitLog.h"
#include "core/Network/ExchangeText.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Tasks/Suspension.h"

namespace quillon {
namespace {

constexpr std::string_view sourceFile = "Network/ConsentNetworkManager";
constexpr std::string_view functionName = "processRequest(_:)";
constexpr std::size_t maximumTagBytes = 4096;
constexpr int notHttp = -999;

using Answer = std::expected<HttpResponse, TransportError>;

Task<Answer> exchangeOver(HttpSession& session, HttpRequest request, std::stop_token stop) {
  std::optional<Answer> answer;
  co_await suspendedUntilRun([&](Job goOn) {
    session.send(std::move(request), std::move(stop), [&answer, goOn = std::move(goOn)](Answer received) mutable {
      answer = std::move(received);
      goOn();
    });
  });
  co_return *std::move(answer);
}

// An error page, or a message, may repeat the token that the request carried. From here on it is nowhere in the answer.
void maskEcho(HttpResponse& response, const HttpRequest& request) {
  const auto token = request.headers.find("X-Auth-Token");
  if (token == request.headers.end() || token->second.empty()) return;
  const auto mask = [&secret = token->second](std::string& text) {
    constexpr std::string_view stars = "***";
    for (auto at = text.find(secret); at != std::string::npos; at = text.find(secret, at + stars.size())) {
      text.replace(at, secret.size(), stars);
    }
  };
  mask(response.body);
  for (auto& [name, value] : response.headers) mask(value);
}

}  // namespace

Task<std::expected<ConsentNetworkManager::Exchange, RequestFailure>> ConsentNetworkManager::send(HttpRequest request) {
  HttpRequest sent = request;
  Answer answer = co_await exchangeOver(*platform_.http, std::move(request), stop_);
  if (!answer) co_return std::unexpected(RequestFailure(std::move(answer.error())));

  HttpResponse& response = *answer;
  maskEcho(response, sent);
  const int status = response.status.value_or(notHttp);
  if (status >= 200 && status <= 299) {
    const auto tag = response.headers.find("Etag");
    if (tag != response.headers.end() && tag->second.size() <= maximumTagBytes) store_.set(key::etag, tag->second);
    co_return Exchange{std::move(sent), std::move(response)};
  }
  if (status == 304) co_return std::unexpected(RequestFailure(NetworkError{NetworkError::Case::cdnNotModified}));
  if (status != 404) logExchange(sent, response);
  co_return std::unexpected(RequestFailure(NetworkError{NetworkError::Case::invalidStatusCode, {}, status}));
}

RequestFailure ConsentNetworkManager::undecodable(const Exchange& exchange, std::string_view name,
                                                  const std::string& error) {
  logExchange(exchange.request, exchange.response);
  return NetworkError{NetworkError::Case::decodingError, "Failed to Decode " + std::string(name) + " : " + error};
}

void ConsentNetworkManager::logExchange(const HttpRequest& request, const HttpResponse& response) {
  UnitLog(logger_, sourceFile)(LogLevel::error, exchangeText(request, response), functionName);
}

}  // namespace quillon
