// The requests of ServerApi.
#include "core/ConsentSDK/ServerApi.h"
#include "core/Logger/UnitLog.h"
#include "core/Network/ExchangeText.h"
#include "core/Network/RequestBuilder.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Text/Sha256.h"

namespace quillon {
namespace {

constexpr int notFound = 404;

bool isMissing(const RequestFailure& failure) {
  const auto* error = std::get_if<NetworkError>(&failure);
  return error && error->kind == NetworkError::Case::invalidStatusCode && error->code == notFound;
}

}  // namespace

template <class Value>
Task<Answer<Value>> ServerApi::send(EndPoint endPoint, std::string url) {
  auto request = RequestBuilder(std::move(endPoint), std::move(url)).build(store_);
  if (!request) co_return std::unexpected(RequestFailure(std::move(request.error())));
  // Only a configuration is long; a flood in answer to anything else is cut off early.
  constexpr std::size_t longestAnswer = std::size_t{64} << 10;
  if constexpr (!std::is_same_v<Value, MainConfiguration>) request->maximumBodyBytes = longestAnswer;
  co_return co_await network_.processRequest<Value>(std::move(*request));
}

Task<Answer<MainConfiguration>> ServerApi::getCDN(SessionPointer session) {
  const ConsentSDKOptions& options = session->options;
  auto answer = co_await send<MainConfiguration>(GetCDNEndPoint(options, session->mode, session->language, false),
                                                 options.cdnUrl);
  if (answer || !isMissing(answer.error())) co_return answer;
  // Many applications publish one file for all languages, so 404 is not an error here.
  UnitLog(logger_, unit::networkAPIs)(
      LogLevel::info, "CDN Configuration with " + escapedForLog(session->language) + " language code not found",
      "getCDN(options:)");
  co_return co_await send<MainConfiguration>(GetCDNEndPoint(options, session->mode, session->language, true),
                                             options.cdnUrl);
}

Task<std::optional<CurrentLocationResponse>> ServerApi::getCurrentLocation() {
  auto answer = co_await send<CurrentLocationResponse>(GetCurrentLocationEndPoint(), platform_.vendorUrl);
  if (answer) co_return std::move(answer->value);
  UnitLog(logger_, unit::networkAPIs)(LogLevel::error, "Failed to current location: " + description(answer.error()),
                                      "getCurrentLocation()");
  co_return std::nullopt;
}

Task<Answer<GenericResponse>> ServerApi::postConsents(std::string url, PostConsentsRequest request) {
  const std::string token = store_.getString(key::xAuthToken);
  PostConsentsEndPoint endPoint(token, request);
  // A server that keeps the heads can tell later whether the device changed its past.
  const std::string head = store_.getString(key::historyHead);
  if (isSha256(head)) endPoint.headerParams->emplace(HeaderParam::historyHead, head);
  if (platform_.receipts && platform_.keys) {
    auto thumbprint = platform_.receipts->keyThumbprint(*platform_.keys);
    if (thumbprint) {
      endPoint.headerParams->emplace(HeaderParam::receiptKey, std::move(*thumbprint));
    } else {
      UnitLog(logger_, unit::networkAPIs)(LogLevel::warning,
                                          "The device's key cannot be used: " + escapedForLog(thumbprint.error()),
                                          "uploadConsents(url:request:)");
    }
  }
  auto answer = co_await send<GenericResponse>(std::move(endPoint), std::move(url));
  if (answer) answer->value.message = withoutEcho(std::move(answer->value.message), token);
  co_return answer;
}

}  // namespace quillon
