// Downloads and uploads.
#include <algorithm>
#include <unordered_set>

#include "core/ConsentSDK/ConsentSDKCore.h"
#include "core/Logger/UnitLog.h"
#include "core/Network/RequestBuilder.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"

namespace quillon {
namespace {

constexpr std::string_view sourceFile = "ConsentSDK/ConsentSDK+NetworkAPIs";
constexpr int notFound = 404;
constexpr std::int64_t statusAccepted = 0;
constexpr std::int64_t statusFailed = 1;

template <class T>
std::expected<T, RequestFailure> asFailure(NetworkError error) {
  return std::unexpected(RequestFailure(std::move(error)));
}

bool isMissing(const RequestFailure& failure) {
  const auto* error = std::get_if<NetworkError>(&failure);
  return error && error->kind == NetworkError::Case::invalidStatusCode && error->code == notFound;
}

// What a decision was when an upload carried it, to tell whether it was changed since.
template <class Key>
bool unchanged(const Key& storeKey, const StoredValues& then, const StoredValues& now) {
  return then.consent(storeKey) == now.consent(storeKey);
}

}  // namespace

Task<std::expected<MainConfiguration, RequestFailure>> ConsentSDK::Core::getCDN(const ConsentSDKOptions& options) {
  const std::string language = locale.currentLanguageCode();
  auto configuration = co_await requestConfiguration(options, GetCDNEndPoint(options, language, false));
  if (configuration || !isMissing(configuration.error())) co_return configuration;
  UnitLog(logger, sourceFile)(LogLevel::error,
                              "CDN Configuration with " + escapedForLog(language) + " language code not found",
                              "getCDN(options:)");
  co_return co_await requestConfiguration(options, GetCDNEndPoint(options, language, true));
}

Task<std::expected<MainConfiguration, RequestFailure>> ConsentSDK::Core::requestConfiguration(
    const ConsentSDKOptions& options, EndPoint endPoint) {
  auto request = RequestBuilder(std::move(endPoint), options.cdnUrl).build(store);
  if (!request) co_return asFailure<MainConfiguration>(std::move(request.error()));
  co_return co_await networkManager.processRequest<MainConfiguration>(std::move(*request));
}

Task<std::optional<CurrentLocationResponse>> ConsentSDK::Core::getCurrentLocation() {
  std::optional<RequestFailure> failure;
  auto request = RequestBuilder(GetCurrentLocationEndPoint(), platform.vendorUrl).build(store);
  if (request) {
    auto location = co_await networkManager.processRequest<CurrentLocationResponse>(std::move(*request));
    if (location) co_return std::move(*location);
    failure = std::move(location.error());
  } else {
    failure = std::move(request.error());
  }
  UnitLog(logger, sourceFile)(LogLevel::error, "Failed to current location: " + description(*failure),
                              "getCurrentLocation()");
  co_return std::nullopt;
}

Task<bool> ConsentSDK::Core::uploadConsents(std::string url, PostConsentsRequest request,
                                            std::shared_ptr<const SuiteEntries> sent) {
  constexpr std::string_view function = "uploadConsents(url:request:)";
  const UnitLog log(logger, sourceFile);
  std::expected<GenericResponse, RequestFailure> response;
  auto built =
      RequestBuilder(PostConsentsEndPoint(store.getString(key::xAuthToken), request), std::move(url)).build(store);
  if (built) {
    response = co_await networkManager.processRequest<GenericResponse>(std::move(*built));
  } else {
    response = asFailure<GenericResponse>(std::move(built.error()));
  }

  if (!response) {
    store.set(key::uploadConsentRequestPending, true);
    const std::string problem = description(response.error());
    log(LogLevel::error, problem, function);
    uploadListeners.tell({false, std::nullopt, problem, now()});
    startRecurringCheck();
    co_return false;
  }

  const bool pending = response->status == statusFailed;
  const bool accepted = response->status == statusAccepted;
  store.transact([&](StoreTransaction& transaction) {
    transaction.set(key::uploadConsentRequestPending, pending);
    if (!accepted) return;
    // A decision made while the upload was under way stays pending: the server has the earlier one.
    const StoredValues then(*sent);
    auto purposesLeft = transaction.pendingPurposes();
    const auto listThen = then.pendingPurposes();
    const std::unordered_set<std::int64_t> purposesThen(listThen.begin(), listThen.end());
    std::erase_if(purposesLeft, [&](std::int64_t id) {
      return purposesThen.contains(id) && unchanged(PurposeKey(id), then, transaction);
    });
    auto permissionsLeft = transaction.pendingPermissions();
    const auto permissionsThen = then.pendingPermissions();
    std::erase_if(permissionsLeft, [&](const std::string& name) {
      return std::ranges::find(permissionsThen, name) != permissionsThen.end() && unchanged(name, then, transaction);
    });
    transaction.settle([request, purposesLeft, permissionsLeft](const std::vector<JournalRecord>& unsettled) {
      return outcomesOf(unsettled, request, [&](const Decision& decision) {
        const auto& id = decision.purposeId;
        const auto& permission = decision.permission;
        return (id && std::ranges::find(purposesLeft, *id) != purposesLeft.end()) ||
               (permission && std::ranges::find(permissionsLeft, permission->rawValue()) != permissionsLeft.end());
      });
    });
    transaction.set(key::pendingPurposesList, std::move(purposesLeft));
    transaction.set(key::pendingPermissionsList, std::move(permissionsLeft));
  });
  log(pending ? LogLevel::error : LogLevel::info, escapedForLog(response->message), function);
  uploadListeners.tell({accepted, response->status, response->message, now()});
  if (accepted) startRecurringCheck();
  co_return accepted;
}

}  // namespace quillon
