// The operations that hosts call once set-up has run.
#include "core/ConsentSDK/Asynchronous.h"
#include "core/ConsentSDK/ConsentSDKCore.h"
#include "core/Integrations/ConsentScript.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Text/LocalizedTexts.h"

namespace quillon {
ConsentStatus ConsentSDK::get(std::int64_t purposeId) const {
  const auto entries = core_->store.snapshot();
  return StoredValues(*entries).consentOrDefault(PurposeKey(purposeId));
}

ConsentStatus ConsentSDK::get(const VantariKey& vantariKey) const {
  const PermissionManager permissions = core_->permissions(core_->cache.current());
  if (permissions.lists(vantariKey)) {
    if (const auto known = permissions.knownConsent(vantariKey)) return *known;
  }
  return core_->store.getConsent(vantariKey.rawValue()).value_or(ConsentStatus::notDetermined);
}

bool ConsentSDK::set(const Purpose& purpose, ConsentStatus consent) {
  if (!purpose.purposeId) return false;
  const Occasion occasion = core_->occasion(GivenType::explicitly);
  const bool stored = core_->store.transact([&](StoreTransaction& transaction) {
    PurposeManager::setConsent(transaction, {*purpose.purposeId, consent, DecisionCause::user}, occasion);
  });
  if (!stored) return false;
  core_->scheduleUpload();
  core_->tasks->start([core = core_]() -> Task<void> {
    core->refreshConsentMode();
    co_return;
  });
  return true;
}

bool ConsentSDK::set(const AppPermission& permission, ConsentStatus consent) {
  if (!permission.permissionId || key::isReserved(permission.permissionId->rawValue())) return false;
  const Occasion occasion = core_->occasion(GivenType::explicitly);
  return core_->store.transact([&](StoreTransaction& transaction) {
    PermissionManager::setConsent(transaction, *permission.permissionId, consent, DecisionCause::user, occasion);
  });
}

namespace {

// The bodies of the operations that come both with a callback and as a future.
template <class Core>
auto purposeConsents(const std::shared_ptr<Core>& core) {
  return [core]() -> Task<std::vector<Purpose>> {
    const auto configuration = core->cache.current();
    co_return configuration ? core->purposes(configuration).purposesWithConsents() : std::vector<Purpose>();
  };
}

template <class Core>
auto permissionConsents(const std::shared_ptr<Core>& core) {
  return [core]() -> Task<std::vector<AppPermission>> {
    co_return core->permissions(core->cache.current()).permissionsWithConsents();
  };
}

template <class Core>
auto bannerConfig(const std::shared_ptr<Core>& core, std::optional<MainConfiguration> given) {
  return [core, given = std::move(given)]() mutable -> Task<std::optional<BannerConfig>> {
    ConfigurationPointer configuration =
        given ? std::make_shared<const MainConfiguration>(std::move(*given)) : core->cache.current();
    co_return co_await core->bannerFor(std::move(configuration));
  };
}

template <class Core>
auto upload(const std::shared_ptr<Core>& core, std::string url, PostConsentsRequest request) {
  return [core, url = std::move(url), request = std::move(request)]() mutable -> Task<void> {
    const auto turn = co_await core->uploads.enter();
    co_await core->uploadConsents(std::move(url), std::move(request), core->store.snapshot());
  };
}

// A part of the cached configuration.
template <class Part, class Core>
auto partOfConfiguration(const std::shared_ptr<Core>& core, std::optional<Part> MainConfiguration::* part) {
  return [core, part]() -> Task<std::optional<Part>> {
    const auto configuration = core->cache.current();
    co_return configuration ? (*configuration).*part : std::nullopt;
  };
}

using Signals = std::map<GoogleConsentType, ConsentStatus>;

template <class Core>
auto consentModeSignals(const std::shared_ptr<Core>& core) {
  return [core]() -> Task<Signals> {
    Signals signals;
    const auto configuration = core->cache.current();
    if (!configuration || !configuration->gcmConfig) co_return signals;
    const auto location = co_await core->locationFor(*configuration);
    const auto* mapping = consentModeMapping(*configuration->gcmConfig, location);
    if (!mapping) co_return signals;
    for (const auto& [type, granted] : consentMap(*mapping, StoredValues(*core->store.snapshot()))) {
      signals.emplace(type, granted ? ConsentStatus::granted : ConsentStatus::declined);
    }
    co_return signals;
  };
}

template <class Core>
auto scriptForPages(const std::shared_ptr<Core>& core) {
  return [core]() -> Task<std::string> {
    PageConsents consents;
    const auto configuration = core->cache.current();
    if (!configuration) co_return consentScript(consents, std::nullopt);
    const std::string language = core->locale.currentLanguageCode();
    for (const Purpose& purpose : core->purposes(configuration).purposesWithConsents()) {
      if (!purpose.purposeId) continue;
      consents.purposes.push_back({*purpose.purposeId, textIn(language, purpose.purposeName.value_or(LocalizedText())),
                                   purpose.consentStatus.value_or(ConsentStatus::notDetermined)});
    }
    for (const auto& [permission, status] : core->permissions(configuration).liveStatuses()) {
      consents.permissions.push_back({permission, status});
    }
    if (!configuration->isGcmEnabled.value_or(false) || !configuration->gcmConfig) {
      co_return consentScript(consents, std::nullopt);
    }
    const auto location = co_await core->locationFor(*configuration);
    const auto* mapping = consentModeMapping(*configuration->gcmConfig, location);
    if (!mapping) co_return consentScript(consents, std::nullopt);
    const auto entries = core->store.snapshot();
    const StoredValues stored(*entries);
    const SuiteEntries undecided{
        {std::string(key::currentComplianceType), std::string(rawValue(stored.complianceType()))}};
    std::optional<PageSignals> signals;
    signals.emplace(consentMap(*mapping, StoredValues(undecided)), consentMap(*mapping, stored));
    co_return consentScript(consents, signals);
  };
}

template <class Core>
auto liveConsent(const std::shared_ptr<Core>& core, VantariKey permission) {
  return [core, permission = std::move(permission)]() -> Task<ConsentStatus> {
    const auto permissions = core->permissions(core->cache.current());
    co_return permissions.lists(permission) ? permissions.getConsentByPermission(permission)
                                            : ConsentStatus::notDetermined;
  };
}

}  // namespace

void ConsentSDK::getPurposeConsents(std::function<void(std::vector<Purpose>)> callback) {
  Asynchronous<std::vector<Purpose>>::callback(core_, std::move(callback), purposeConsents(core_));
}

std::future<std::vector<Purpose>> ConsentSDK::getPurposeConsents() {
  return Asynchronous<std::vector<Purpose>>::future(core_, purposeConsents(core_));
}

void ConsentSDK::getPermissionConsents(std::function<void(std::vector<AppPermission>)> callback) {
  Asynchronous<std::vector<AppPermission>>::callback(core_, std::move(callback), permissionConsents(core_));
}

std::future<std::vector<AppPermission>> ConsentSDK::getPermissionConsents() {
  return Asynchronous<std::vector<AppPermission>>::future(core_, permissionConsents(core_));
}

void ConsentSDK::removeConsents() {
  core_->store.removeAllConsents();
}

void ConsentSDK::getBannerConfig(std::optional<MainConfiguration> configuration,
                                 std::function<void(std::optional<BannerConfig>)> callback) {
  Asynchronous<std::optional<BannerConfig>>::callback(core_, std::move(callback),
                                                      bannerConfig(core_, std::move(configuration)));
}

std::future<std::optional<BannerConfig>> ConsentSDK::getBannerConfig(std::optional<MainConfiguration> configuration) {
  return Asynchronous<std::optional<BannerConfig>>::future(core_, bannerConfig(core_, std::move(configuration)));
}

bool ConsentSDK::isBannerDue() {
  return core_->isBannerDue();
}

void ConsentSDK::acceptOrReject(bool accept, std::function<void(bool)> callback) {
  Asynchronous<bool>::callback(core_, std::move(callback),
                               [core = core_, accept] { return core->acceptOrReject(accept); });
}

std::future<bool> ConsentSDK::acceptOrReject(bool accept) {
  return Asynchronous<bool>::future(core_, [core = core_, accept] { return core->acceptOrReject(accept); });
}

void ConsentSDK::uploadConsents(std::string url, PostConsentsRequest request, std::function<void()> done) {
  Asynchronous<void>::callback(core_, std::move(done), upload(core_, std::move(url), std::move(request)));
}

std::future<void> ConsentSDK::uploadConsents(std::string url, PostConsentsRequest request) {
  return Asynchronous<void>::future(core_, upload(core_, std::move(url), std::move(request)));
}

void ConsentSDK::uploadPendingConsents(std::function<void(bool)> callback) {
  Asynchronous<bool>::callback(core_, std::move(callback), [core = core_] { return core->uploadPendingConsents(); });
}

std::future<bool> ConsentSDK::uploadPendingConsents() {
  return Asynchronous<bool>::future(core_, [core = core_] { return core->uploadPendingConsents(); });
}

void ConsentSDK::checkConsents(std::function<void()> done) {
  Asynchronous<void>::callback(core_, std::move(done), [core = core_] { return core->consentCheck(); });
}

std::future<void> ConsentSDK::checkConsents() {
  return Asynchronous<void>::future(core_, [core = core_] { return core->consentCheck(); });
}

void ConsentSDK::getSettingsPrompt(std::function<void(std::optional<SettingsPrompt>)> callback) {
  Asynchronous<std::optional<SettingsPrompt>>::callback(core_, std::move(callback),
                                                        partOfConfiguration(core_, &MainConfiguration::settingPrompt));
}

std::future<std::optional<SettingsPrompt>> ConsentSDK::getSettingsPrompt() {
  return Asynchronous<std::optional<SettingsPrompt>>::future(
      core_, partOfConfiguration(core_, &MainConfiguration::settingPrompt));
}

void ConsentSDK::getGCMConfig(std::function<void(std::optional<GcmConfig>)> callback) {
  Asynchronous<std::optional<GcmConfig>>::callback(core_, std::move(callback),
                                                   partOfConfiguration(core_, &MainConfiguration::gcmConfig));
}

std::future<std::optional<GcmConfig>> ConsentSDK::getGCMConfig() {
  return Asynchronous<std::optional<GcmConfig>>::future(core_,
                                                        partOfConfiguration(core_, &MainConfiguration::gcmConfig));
}

void ConsentSDK::getGCMConsents(std::function<void(Signals)> callback) {
  Asynchronous<Signals>::callback(core_, std::move(callback), consentModeSignals(core_));
}

std::future<std::map<GoogleConsentType, ConsentStatus>> ConsentSDK::getGCMConsents() {
  return Asynchronous<Signals>::future(core_, consentModeSignals(core_));
}

void ConsentSDK::consentScript(std::function<void(std::string)> callback) {
  Asynchronous<std::string>::callback(core_, std::move(callback), scriptForPages(core_));
}

std::future<std::string> ConsentSDK::consentScript() {
  return Asynchronous<std::string>::future(core_, scriptForPages(core_));
}

void ConsentSDK::checkConsentBy(VantariKey permissionId, std::function<void(ConsentStatus)> callback) {
  Asynchronous<ConsentStatus>::callback(core_, std::move(callback), liveConsent(core_, std::move(permissionId)));
}

std::future<ConsentStatus> ConsentSDK::checkConsentBy(VantariKey permissionId) {
  return Asynchronous<ConsentStatus>::future(core_, liveConsent(core_, std::move(permissionId)));
}

void ConsentSDK::presentBanner() {
  core_->presentBanner();
}

void ConsentSDK::presentPreferenceCenter() {
  core_->presentPreferenceCenter();
}

void ConsentSDK::presentSettingPrompt(VantariKey permissionId) {
  core_->presentSettingPrompt(std::move(permissionId), Core::Offer::unlessClosedBefore);
}

void ConsentSDK::openLink(std::string link) {
  core_->openLink(std::move(link));
}

void ConsentSDK::registerFonts(std::optional<CustomFont> heading, std::optional<CustomFont> body,
                               std::optional<CustomFont> subHeading, std::optional<CustomFont> headingLight) {
  core_->theme.registerFonts({std::move(heading), std::move(body), std::move(subHeading), std::move(headingLight)});
}

void ConsentSDK::registerColors(CustomColors colors) {
  core_->theme.registerColors(std::move(colors));
}

std::future<void> ConsentSDK::settled() {
  return core_->tasks->settled();
}

}  // namespace quillon
