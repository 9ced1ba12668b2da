// The check cycle, the location, the banner's turn and the upload.
#include "core/Banner/BannerSelection.h"
#include "core/Banner/BannerState.h"
#include "core/ConsentSDK/ConsentSDKCore.h"
#include "core/ConsentSDK/SDKVersion.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"

namespace quillon {
namespace {

constexpr std::chrono::seconds periodWithoutOptions{1800};
constexpr std::chrono::seconds locationLifetime{3600};
// How long the user waits for the location before the banner is chosen without it.
constexpr std::chrono::seconds locationPatience{5};
// The same for so long after a failure: not every start is to pay for a server that is out of order.
constexpr std::chrono::seconds locationFailureLifetime{600};
constexpr std::chrono::seconds locationPatienceAfterFailure{1};
constexpr std::chrono::seconds followUpDelay{1};

}  // namespace

void ConsentSDK::Core::startRecurringCheck() {
  const auto options = currentOptions();
  const std::chrono::seconds period =
      options ? std::chrono::seconds(options->consentsCheckInterval.count()) : periodWithoutOptions;
  auto timer = platform.clock->every(period, [weak = weak_from_this()] {
    const auto core = weak.lock();
    if (!core) return;
    core->tasks->start([core]() -> Task<void> { co_await core->consentCheck(); });
  });
  const std::scoped_lock lock(mutex_);
  if (!stop.stop_requested()) recurringCheckTask_.swap(timer);
}

void ConsentSDK::Core::startNetworkMonitor() {
  std::unique_ptr<NetworkSubscription> earlier;  // Dropped outside the lock: that may wait for its handler.
  {
    const std::scoped_lock lock(mutex_);
    earlier = std::move(monitor_);
  }
  earlier.reset();
  auto monitor = platform.network->start(
      platform.executors->serial("NetworkMonitor"), [weak = weak_from_this()](NetworkStatus status) {
        const auto core = weak.lock();
        if (!core) return;
        std::optional<NetworkStatus> previous;
        {
          const std::scoped_lock lock(core->mutex_);
          previous = std::exchange(core->networkStatus_, status);
        }
        if (previous == NetworkStatus::unsatisfied && status == NetworkStatus::satisfied) {
          core->tasks->start([core]() -> Task<void> { co_await core->consentCheck(); });
        }
      });
  const std::scoped_lock lock(mutex_);
  if (!stop.stop_requested()) monitor_.swap(monitor);
}

void ConsentSDK::Core::startPermissionObservation() {
  std::unique_ptr<PermissionSubscription> earlier;  // Dropped outside the lock: that may wait for its handler.
  {
    const std::scoped_lock lock(mutex_);
    earlier = std::move(permissionObservation_);
  }
  earlier.reset();
  auto observation = platform.permissions->observe([weak = weak_from_this()] {
    const auto core = weak.lock();
    if (!core) return;
    core->tasks->start([core]() -> Task<void> {
      auto permissions = core->permissions(core->cache.current());
      if (permissions.checkPermissions(core->occasion(GivenType::noAction))) core->scheduleUpload();
      co_return;
    });
  });
  const std::scoped_lock lock(mutex_);
  if (!stop.stop_requested()) permissionObservation_.swap(observation);
}

std::optional<std::string> ConsentSDK::Core::knownLocation() const {
  const auto options = currentOptions();
  if (options && options->locationCode && !options->locationCode->empty()) return options->locationCode;
  return StoredValues(*store.snapshot()).string(key::currentLocation);
}

void ConsentSDK::Core::refreshConsentMode() {
  if (const auto configuration = cache.current()) {
    consentMode.updateFirebaseConsent(*configuration, knownLocation());
  }
}

Task<std::optional<std::string>> ConsentSDK::Core::locationFor(const MainConfiguration& configuration) {
  const auto options = currentOptions();
  if (options && options->locationCode && !options->locationCode->empty()) co_return options->locationCode;
  if (!dependsOnLocation(configuration)) co_return std::nullopt;

  if (!isWithin(key::currentLocationTimestamp, locationLifetime)) {
    const bool failedLately = isWithin(key::locationFailedTimestamp, locationFailureLifetime);
    const auto lookup = locationLookup();
    co_await lookup->happensWithin(failedLately ? locationPatienceAfterFailure : locationPatience, *platform.clock);
    if (!failedLately && !isWithin(key::currentLocationTimestamp, locationLifetime)) {
      store.set(key::locationFailedTimestamp, platform.clock->now());
    }
  }
  co_return knownLocation();  // An old answer is better than none.
}

bool ConsentSDK::Core::isWithin(std::string_view timestamp, std::chrono::seconds lifetime) const {
  const auto when = StoredValues(*store.snapshot()).date(timestamp);
  const auto present = platform.clock->now();
  return when && *when <= present && present - *when < lifetime;
}

std::shared_ptr<TaskEvent> ConsentSDK::Core::locationLookup() {
  std::shared_ptr<TaskEvent> lookup;
  {
    const std::scoped_lock lock(mutex_);
    if (locationLookup_) return locationLookup_;
    lookup = std::make_shared<TaskEvent>();
    locationLookup_ = lookup;
  }
  // Over also when the task fails, or never starts.
  struct End {
    std::shared_ptr<Core> core;
    std::shared_ptr<TaskEvent> lookup;
    ~End() {
      {
        const std::scoped_lock lock(core->mutex_);
        core->locationLookup_.reset();
      }
      lookup->happen();
    }
  };
  auto end = std::make_unique<End>(shared_from_this(), lookup);
  tasks->start([self = shared_from_this(), end = std::move(end)]() mutable -> Task<void> {
    const auto answer = co_await self->getCurrentLocation();
    if (!answer || !answer->data) co_return;
    const LocationCode code = locationCode(*answer->data, self->locale.currentLanguageCode());
    self->store.transact([&](StoreTransaction& transaction) {
      transaction.set(key::currentCountryCode, code.country);
      transaction.set(key::currentLocation, code.location);
      transaction.set(key::currentLocationTimestamp, self->platform.clock->now());
      transaction.remove(key::locationFailedTimestamp);
    });
    const auto ended = end->lookup;
    end.reset();
    if (!ended->wasMissed()) co_return;
    if (auto configuration = self->cache.current()) co_await self->apply(std::move(configuration));
  });
  return lookup;
}

Task<std::optional<BannerConfig>> ConsentSDK::Core::bannerFor(ConfigurationPointer configuration) {
  if (!configuration) co_return std::nullopt;
  const auto location = co_await locationFor(*configuration);
  const BannerConfig* selected = selectBanner(*configuration, location);
  if (!selected) co_return std::nullopt;
  BannerConfig banner = *selected;
  banner.translations = configuration->translations;
  store.set(key::bannerInterval, banner.bannerReappearanceTime.value_or(std::string(defaultBannerInterval)));
  co_return banner;
}

bool ConsentSDK::Core::isBannerDue() {
  bool due = false;
  store.transact([&](StoreTransaction& transaction) {
    const BannerState state = bannerState(transaction, *platform.clock);
    if (state.promotesDefaults) transaction.set(key::consentGivenType, std::string(givenType::explicitly));
    if (transaction.integer(key::bannerShownDate, now()) > now()) {
      // The clock was put back since. Counted from now, the interval passes at some time.
      transaction.set(key::bannerShownDate, now());
    }
    due = state.isDue();
    if (!due) return;
    transaction.set(key::isBannerPresent, true);
    transaction.set(key::bannerShownDate, now());
  });
  return due;
}

Task<void> ConsentSDK::Core::consentCheck() {
  if (!currentOptions()) co_return;
  const Loaded loaded = co_await getCDNFile();
  if (!loaded.configuration) co_return;
  {
    const auto entries = store.snapshot();
    const StoredValues stored(*entries);
    const bool pending = stored.boolean(key::uploadConsentRequestPending) || !stored.pendingPurposes().empty() ||
                         !stored.pendingPermissions().empty();
    if (!loaded.changed && !pending) co_return;
  }
  co_await bannerFor(loaded.configuration);
  recordDefaults(loaded.configuration);
  refreshConsentMode();
  co_await uploadPendingConsents();
}

PostConsentsRequest ConsentSDK::Core::uploadRequest(const ConsentSDKOptions& options, const StoredValues& stored,
                                                    const ConfigurationPointer& configuration) {
  PostConsentsRequest request;
  request.uuid = stored.string(key::subjectId, {});
  request.appUUID = options.appId;
  request.device = platform.host->deviceDescription();
  request.implicitConsent = stored.consentGivenType() == givenType::implicitly;
  request.version = stored.integer(key::configurationVersion, 0);
  request.purposeConsents = purposes(configuration).pendingConsents(stored);
  request.permissions = permissions(configuration).pendingConsents(stored);
  request.testingMode = options.testingMode;
  if (stored.boolean(key::isATTEnabled)) request.adId = platform.tracking->advertisingIdentifier().value_or("");
  request.bannerInfo = std::string(rawValue(stored.complianceType()));
  request.sdkVersion = installedSDKVersion(*platform.host);
  return request;
}

Task<bool> ConsentSDK::Core::uploadPendingConsents() {
  const auto options = currentOptions();
  if (!options) co_return false;
  const auto turn = co_await uploads.enter();
  const auto sent = store.snapshot();
  const StoredValues stored(*sent);
  if (!stored.boolean(key::uploadConsentRequestPending) && stored.pendingPurposes().empty() &&
      stored.pendingPermissions().empty()) {
    co_return true;
  }
  const ConfigurationPointer configuration = cache.current();
  if (!configuration) co_return false;
  co_return co_await uploadConsents(options->appUrl, uploadRequest(*options, stored, configuration), sent);
}

void ConsentSDK::Core::scheduleUpload() {
  std::uint64_t number = 0;
  {
    const std::scoped_lock lock(mutex_);
    if (followUpScheduled_ || stop.stop_requested()) return;
    followUpScheduled_ = true;
    number = ++followUpNumber_;
  }
  auto timer = platform.clock->after(followUpDelay, [weak = weak_from_this()] {
    const auto core = weak.lock();
    if (!core) return;
    {
      const std::scoped_lock lock(core->mutex_);
      core->followUpScheduled_ = false;
    }
    core->tasks->start([core]() -> Task<void> { co_await core->uploadPendingConsents(); });
  });
  const std::scoped_lock lock(mutex_);
  // Held up until the timer had fired, this thread must not put it in the place of a later one.
  if (number == followUpNumber_) followUp_.swap(timer);
}

}  // namespace quillon
