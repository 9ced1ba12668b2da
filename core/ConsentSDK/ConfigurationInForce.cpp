// Applies a configuration: stores its values and updates what depends on it.
#include "core/Banner/BannerSelection.h"
#include "core/ConsentSDK/ConfigurationLoader.h"
#include "core/Logger/UnitLog.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"

namespace quillon {
namespace {

std::string intervalOf(const BannerConfig* banner) {
  return (banner ? banner->bannerReappearanceTime : std::nullopt).value_or(std::string(defaultBannerInterval));
}

void writeValues(StoreTransaction& transaction, const ConfigurationInForce& inForce) {
  const MainConfiguration& configuration = *inForce.configuration;
  transaction.set(key::xAuthToken, configuration.token.value_or(std::string()));
  transaction.set(key::isSettingsPromptEnabled, configuration.isSettingsPromptEnabled.value_or(false));
  transaction.set(key::isATTEnabled, configuration.isATTEnabled.value_or(false));
  transaction.set(key::trackingPurposesList, purposesBoundToTracking(configuration));
  if (!inForce.type) return;
  transaction.set(key::currentComplianceType, std::string(rawValue(*inForce.type)));
  transaction.set(key::bannerInterval, inForce.bannerInterval);
}

void write(StoreTransaction& transaction, const ConfigurationInForce& inForce) {
  writeValues(transaction, inForce);
  const MainConfiguration& configuration = *inForce.configuration;
  if (configuration.version) {
    const bool isNewer = *configuration.version > transaction.integer(key::configurationVersion, 0);
    if (isNewer && configuration.reConsentEnabled.value_or(false)) transaction.requestReconsent();
    // The server may accept with a newer document what it rejected with an older one.
    if (isNewer) transaction.remove(key::uploadRefusedUpTo);
    transaction.set(key::configurationVersion, *configuration.version);
  }
}

}  // namespace

void ConfigurationInForce::restore(StoreTransaction& transaction) const {
  const auto& version = configuration->version;
  const bool isOutdated = version && *version < transaction.integer(key::configurationVersion, 0);
  if (!*isStored && !isOutdated) return write(transaction, *this);
  if (!type || transaction.string(key::currentComplianceType)) return;
  writeValues(transaction, *this);
  // An answer given since then was to the same question, so it is not a re-consent.
  if (configuration->version && transaction.integer(key::configurationVersion, 0) == 0) {
    transaction.set(key::configurationVersion, *configuration->version);
  }
}

bool ConfigurationLoader::transact(const UserDefaultManager::Edit& edit) {
  const auto present = inForce();
  const bool stored = s_.store.transact([&](StoreTransaction& transaction) {
    if (present) present->restore(transaction);
    edit(transaction);
  });
  if (stored && present) *present->isStored = true;
  return stored;
}

Task<std::optional<bool>> ConfigurationLoader::apply(SessionPointer session, ConfigurationPointer configuration,
                                                     std::function<bool()> isWanted) {
  const auto location = co_await s_.location.locationFor(session, configuration);
  const auto place = applying_.join();  // only now: waiting for a location must not block other applications
  co_await place.turn();
  if (!isWanted()) co_return std::nullopt;

  const auto earlier = this->inForce();
  if (!earlier || earlier->configuration != configuration) warnOfUnknownRegion(*session, *configuration);
  const BannerConfig* banner = selectBanner(*configuration, location);
  std::optional<ComplianceType> type;
  if (banner) type = banner->complianceType.value_or(ComplianceType::noticeOnly);
  const auto inForce = std::make_shared<const ConfigurationInForce>(
      ConfigurationInForce{configuration, session, type, intervalOf(banner),
                           PurposeTerms(*configuration, banner ? banner->complianceType : std::nullopt)});
  bool isCurrent = true;
  const bool isStored = s_.store.transact([&](StoreTransaction& transaction) {
    isCurrent = s_.sessions.isCurrent(*session);
    if (isCurrent) write(transaction, *inForce);
  });
  if (!isCurrent) co_return std::nullopt;
  *inForce->isStored = isStored;
  // No reader may see new terms with an old mapping, or the other way round.
  const bool hasNewMapping = session->options.privacySignal && (!earlier || earlier->configuration != configuration);
  if (hasNewMapping) s_.store.consentTable().updateTerms(std::nullopt);
  s_.signal.follow(*session, configuration.get());
  {
    const std::scoped_lock lock(mutex_);
    inForce_ = inForce;
    updateTerms();
  }
  s_.events.gates.update();
  // Without the compliance type in the store, defaults would be recorded under another one, or as granted under none.
  const bool changed = isStored && reconcile(configuration);
  s_.consentMode.updateFirebaseConsent(configuration, location);
  co_return changed;
}

void ConfigurationLoader::updateTerms() {
  std::optional<ConsentTable::Terms> shown;
  if (inForce_) {
    shown.emplace(inForce_->terms.allowedUndecided(), inForce_->terms.boundToTracking());
    for (const AppPermission& permission :
         inForce_->configuration->permissions.value_or(std::vector<AppPermission>())) {
      if (permission.permissionId) shown->permissions.push_back(permission.permissionId->rawValue());
    }
  }
  s_.store.consentTable().updateTerms(std::move(shown));
}

void ConfigurationLoader::warnOfUnknownRegion(const Session& session, const MainConfiguration& configuration) {
  const auto& region = session.options.locationCode;
  if (!region || !configuration.bannerConfig) return;
  const auto& locations = configuration.bannerConfig->locations;
  if (locations.contains(*region) || locations.contains(region->substr(0, region->find('#')))) return;
  std::string known;
  for (const auto& [place, category] : locations) known += (known.empty() ? "" : ", ") + place;
  if (known.empty() || known == "default") return;  // the configuration has no regional banners
  UnitLog(s_.logger, "ConsentSDK/ConsentSDK+CDNUtils")(
      LogLevel::warning,
      "No banner of the configuration is for " + escapedForLog(*region) + "; it knows " + escapedForLog(known),
      "setup(options:)");
}

bool ConfigurationLoader::reconcile(const ConfigurationPointer& configuration) {
  const DecisionContext context = s_.sessions.context(GivenType::noAction);
  const bool purposesChanged = purposes(configuration).checkPurposes(context);
  return permissions(configuration).checkPermissions(context) || purposesChanged;
}

bool ConfigurationLoader::honourSignals() {
  const auto session = s_.sessions.current();
  if (!session) return false;
  const bool isHonoured = session->options.privacySignal.has_value();
  ConfigurationPointer configuration;
  if (isHonoured) {
    // The mapping must match the terms in force; another process may have replaced or removed the cached document.
    const auto present = inForce();
    configuration = present ? present->configuration : current();
  }
  s_.signal.follow(*session, configuration.get());
  if (!isHonoured && StoredValues(*s_.store.snapshot()).decidedBySignal().empty()) return false;
  return purposes(configuration).honourSignals(s_.sessions.context(GivenType::noAction));
}

void ConfigurationLoader::reapply() {
  const auto present = inForce();
  if (!present) return;
  s_.work.start([this, present]() -> Task<void> {
    // A named variable: GCC 12 destroys a temporary closure of an awaited call twice.
    const std::function<bool()> isWanted = [this, present] { return inForce() == present; };
    co_await apply(present->session, present->configuration, isWanted);
  });
}

std::shared_ptr<const ConfigurationInForce> ConfigurationLoader::inForce() const {
  if (s_.work.isClosed()) return nullptr;
  const std::scoped_lock lock(mutex_);
  return inForce_;
}

bool ConfigurationLoader::removeConsents() {
  const auto present = inForce();
  // First, so that a crash in between leaves no key that links the next user to this one.
  if (s_.platform.keys) {
    if (const auto forgotten = s_.platform.keys->forget(); !forgotten) {
      UnitLog(s_.logger, unit::consentSDK)(LogLevel::error, "The device's key stays: " + forgotten.error(), __func__);
    }
  }
  const bool removed = s_.store.removeAllConsents([&](StoreTransaction& transaction) {
    if (!present) return;
    write(transaction, *present);
    // The document stays, so its address and language stay known.
    transaction.set(key::cdnAddress, present->session->configurationAddress());
    transaction.set(key::languageCode, present->session->language);
    transaction.set(key::cdnCachedTimestamp, wholeSeconds(s_.platform.clock->now()));
  });
  if (!removed || !present) return removed;
  s_.work.run([this, present] {
    if (inForce() != present) return;  // superseded by a later setup
    reconcile(present->configuration);
    refreshConsentMode();
  });
  return removed;
}

Task<std::optional<BannerConfig>> ConfigurationLoader::bannerFor(ConfigurationPointer configuration) {
  if (!configuration) co_return std::nullopt;
  const auto location = co_await s_.location.locationFor(s_.sessions.current(), configuration);
  const BannerConfig* selected = selectBanner(*configuration, location);
  if (!selected) co_return std::nullopt;
  BannerConfig banner = *selected;
  banner.translations = configuration->translations;
  if (s_.store.getString(key::bannerInterval) != intervalOf(selected)) {
    s_.store.set(key::bannerInterval, intervalOf(selected));
  }
  co_return banner;
}

void ConfigurationLoader::refreshConsentMode() {
  ConfigurationPointer configuration = current();
  // The library must be told that a consent has ended, even if the document is gone.
  if (const auto present = inForce(); !configuration && present) configuration = present->configuration;
  s_.consentMode.updateFirebaseConsent(std::move(configuration), s_.location.known(s_.sessions.current()));
}

}  // namespace quillon
