// The road of a configuration: from the cache or the network to the stored consents.
#include "core/Banner/BannerSelection.h"
#include "core/ConsentSDK/ConsentSDKCore.h"
#include "core/Logger/UnitLog.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"

namespace quillon {
namespace {

constexpr std::string_view sourceFile = "ConsentSDK/ConsentSDK+CDNUtils";
constexpr std::string_view function = "getCDNFile()";
constexpr std::int64_t staleSeconds = 3601;

bool isNotModified(const RequestFailure& failure) {
  const auto* error = std::get_if<NetworkError>(&failure);
  return error && error->kind == NetworkError::Case::cdnNotModified;
}

}  // namespace

Task<ConsentSDK::Core::Loaded> ConsentSDK::Core::getCDNFile() {
  ConfigurationPointer configuration = cache.readCDNFile(true);
  const std::int64_t timestamp = configuration ? store.getInt64(key::cdnCachedTimestamp, now()) : 0;
  // Nothing was saved in the future: a clock that was put back says nothing about the age.
  const bool isFresh = configuration && timestamp != 0 && timestamp <= now() && timestamp > now() - staleSeconds;
  if (!isFresh) {
    sdkListener.setReady(SDKStatus::fetching);
    configuration = co_await download(std::move(configuration));
  }
  if (!configuration) configuration = cache.bundled();
  Loaded loaded{configuration};
  if (configuration) loaded.changed = co_await apply(configuration);
  sdkListener.setReady(configuration ? SDKStatus::ready : SDKStatus::unavailable);
  co_return loaded;
}

Task<ConfigurationPointer> ConsentSDK::Core::download(ConfigurationPointer probe) {
  const UnitLog log(logger, sourceFile);
  const auto options = currentOptions();
  if (!options) {
    log(LogLevel::error, "Failed to fetch CDN File", function);
    co_return probe;
  }
  for (;;) {
    const auto entries = store.snapshot();
    const auto sentTag = StoredValues(*entries).string(key::etag);
    const auto cachedTag = StoredValues(*entries).string(key::cdnEtag);
    auto downloaded = co_await getCDN(*options);
    if (downloaded) {
      cache.saveCDNToFile(*downloaded, ConfigurationCache::fileName);
      co_return cache.readCDNFile(false);
    }
    if (!isNotModified(downloaded.error())) {
      log(LogLevel::error, "Failed to fetch CDN File: " + description(downloaded.error()), function);
      co_return probe;
    }
    if (!sentTag || (probe && sentTag == cachedTag)) {
      log(LogLevel::info, "CDN Configuration is up to date", function);
      co_return probe;
    }
    // "Unchanged" speaks of a document that is not the one at hand: it was never saved, or is gone. Ask for it anew.
    store.remove(key::etag);
  }
}

Task<bool> ConsentSDK::Core::apply(ConfigurationPointer configuration) {
  const auto location = co_await locationFor(*configuration);
  const BannerConfig* banner = selectBanner(*configuration, location);
  store.transact([&](StoreTransaction& transaction) {
    transaction.set(key::xAuthToken, configuration->token.value_or(std::string()));
    transaction.set(key::isSettingsPromptEnabled, configuration->isSettingsPromptEnabled.value_or(false));
    transaction.set(key::isATTEnabled, configuration->isATTEnabled.value_or(false));
    if (configuration->version) {
      const bool isNewer = *configuration->version > transaction.integer(key::configurationVersion, 0);
      if (isNewer && configuration->reConsentEnabled.value_or(false)) {
        transaction.set(key::consentGivenType, std::string(givenType::noAction));
      }
      transaction.set(key::configurationVersion, *configuration->version);
    }
    if (banner) {
      const auto compliance = banner->complianceType.value_or(ComplianceType::noticeOnly);
      transaction.set(key::currentComplianceType, std::string(rawValue(compliance)));
      transaction.set(key::bannerInterval, banner->bannerReappearanceTime.value_or(std::string(defaultBannerInterval)));
    }
  });
  const bool purposesChanged = purposes(configuration).checkPurposes(occasion(GivenType::noAction)).changed;
  const bool permissionsChanged = permissions(configuration).checkPermissions(occasion(GivenType::noAction));
  consentMode.updateFirebaseConsent(*configuration, location);
  co_return purposesChanged || permissionsChanged;
}

}  // namespace quillon
