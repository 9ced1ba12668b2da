#include "core/Network/ConsentNetworkManager.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "core/Logger/UnitLog.h"
#include "core/Network/ExchangeText.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Tasks/Suspension.h"
#include "core/Text/Ascii.h"

namespace quillon {
namespace {

constexpr std::string_view functionName = "processRequest(_:)";
constexpr std::size_t maximumTagBytes = 4096;
constexpr int notHttp = -999;
constexpr std::size_t longestShownDocument = 2048;

using HttpAnswer = std::expected<HttpResponse, TransportError>;

Task<HttpAnswer> exchangeOver(HttpSession& session, HttpRequest request, std::stop_token stop) {
  std::optional<HttpAnswer> answer;
  co_await suspendedUntilRun([&](Job goOn) {
    session.send(std::move(request), std::move(stop), [&answer, goOn = std::move(goOn)](HttpAnswer received) mutable {
      answer = std::move(received);
      goOn();
    });
  });
  co_return *std::move(answer);
}

}  // namespace

bool isSendableTag(std::string_view tag) {
  const auto isPrintable = [](char c) { return static_cast<unsigned char>(c) >= 0x20 && c != 0x7f; };
  return !tag.empty() && tag.size() <= maximumTagBytes && std::ranges::all_of(tag, isPrintable);
}

Task<std::expected<ConsentNetworkManager::Exchange, RequestFailure>> ConsentNetworkManager::send(HttpRequest request) {
  HttpRequest sent = request;
  HttpAnswer answer = co_await exchangeOver(*platform_.http, std::move(request), stop_);
  if (!answer) co_return std::unexpected(RequestFailure(std::move(answer.error())));

  HttpResponse& response = *answer;
  const int status = response.status.value_or(notHttp);
  if (status >= 200 && status <= 299) {
    Exchange exchange{std::move(sent), std::move(response)};
    const auto tag = exchange.response.headers.find("Etag");
    if (tag != exchange.response.headers.end()) {
      if (const auto text = trimmed(tag->second); isSendableTag(text)) exchange.etag = std::string(text);
    }
    if (exchange.etag) store_.set(key::etag, *exchange.etag);
    co_return exchange;
  }
  if (status == 304) co_return std::unexpected(RequestFailure(NetworkError{NetworkError::Case::cdnNotModified}));
  if (status != 404) logExchange(exchangeText(sent, response));
  co_return std::unexpected(RequestFailure(NetworkError{NetworkError::Case::invalidStatusCode, {}, status}));
}

RequestFailure ConsentNetworkManager::undecodable(const Exchange& exchange, std::string_view name,
                                                  const std::string& error) {
  std::string message = "Failed to Decode " + std::string(name) + " : " + error;
  // The error precedes the document, which may be long and is therefore logged at debug only.
  const std::size_t shown = logger_.logLevel() == LogLevel::debug ? longestShownDocument : 0;
  logExchange(message + exchangeText(exchange.request, exchange.response, shown));
  return NetworkError{NetworkError::Case::decodingError, std::move(message)};
}

void ConsentNetworkManager::logExchange(const std::string& text) {
  UnitLog(logger_, unit::networkManager)(LogLevel::error, text, functionName);
}

}  // namespace quillon
