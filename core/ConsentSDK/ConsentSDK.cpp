#include "quillon/ConsentSDK.h"

#include "core/ConsentSDK/ConsentSDKCore.h"
#include "core/ConsentSDK/SDKVersion.h"
#include "core/Logger/UnitLog.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"

namespace quillon {
namespace {

constexpr std::string_view sourceFile = "ConsentSDK/ConsentSDK";
constexpr std::chrono::seconds leavingLimit{2};

}  // namespace

ConsentSDK::Core::Core(Platform services)
    : platform(std::move(services)),
      store(platform, logger, [this](std::vector<Decision> decisions) { return announce(std::move(decisions)); }),
      logger(platform, store),
      locale(platform),
      sdkListener([this](Job job) { onMain(std::move(job)); }),
      consentListeners([this](Job job) { onMain(std::move(job)); }),
      screenListeners([this](Job job) { onMain(std::move(job)); }),
      uploadListeners([this](Job job) { onMain(std::move(job)); }),
      cache(platform, store, logger, locale),
      networkManager(platform, store, logger, stop.get_token()),
      consentMode(platform, store, logger) {}

std::shared_ptr<ConsentSDK::Core> ConsentSDK::Core::make(Platform platform) {
  auto core = std::make_shared<Core>(std::move(platform));
  core->tasks.emplace(core->platform.executors->background(), [weak = std::weak_ptr(core)](const char* what) {
    if (const auto alive = weak.lock()) {
      UnitLog(alive->logger, sourceFile)(LogLevel::error, "A task failed: " + escapedForLog(what), "task");
    }
  });
  return core;
}

void ConsentSDK::Core::close() {
  tasks->close();
  stop.request_stop();
  std::unique_ptr<Timer> recurring;
  std::unique_ptr<Timer> followUp;
  std::unique_ptr<NetworkSubscription> monitor;
  std::unique_ptr<PermissionSubscription> permissionObservation;
  {
    const std::scoped_lock lock(mutex_);
    permissionObservation = std::move(permissionObservation_);
    recurring = std::move(recurringCheckTask_);
    followUp = std::move(followUp_);
    monitor = std::move(monitor_);
  }
}

void ConsentSDK::Core::waitUntilQuiet(std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  tasks->settled().wait_until(deadline);
  hostCalls_.waitForOthers(deadline);
}

void ConsentSDK::Core::onMain(Job job) {
  platform.executors->main()->post([weak = weak_from_this(), job = std::move(job)]() mutable {
    const auto core = weak.lock();
    if (!core) return;
    const HostCalls::Call call(core->hostCalls_);  // begins before the look, so that who stops us sees one or the other
    if (!core->stop.stop_requested()) core->callHost(job);
  });
}

void ConsentSDK::Core::callHost(Job& job) {
  const UnitLog log(logger, sourceFile);
  try {
    job();
  } catch (const std::exception& exception) {
    log(LogLevel::error, "A callback of the host threw: " + escapedForLog(exception.what()), "callback");
  } catch (...) {
    log(LogLevel::error, "A callback of the host threw", "callback");
  }
}

std::optional<ConsentSDKOptions> ConsentSDK::Core::currentOptions() const {
  const std::scoped_lock lock(mutex_);
  return options_;
}

void ConsentSDK::Core::setup(ConsentSDKOptions newOptions) {
  {
    const std::scoped_lock lock(mutex_);
    options_ = newOptions;
  }
  const std::string lastModeText = store.getString(key::lastModeUsed, rawValue(newOptions.mode));
  const Mode lastMode = fromRawValue<Mode>(lastModeText).value_or(newOptions.mode);
  logger.setLogLevel(newOptions.logLevel);
  locale.setCurrentLanguageCode(newOptions.languageCode ? newOptions.languageCode->text() : std::string());

  cache.setBundled(newOptions.bundledConfiguration);

  const auto cachedLanguage = StoredValues(*store.snapshot()).string(key::languageCode);
  const bool languageChanged = cachedLanguage && *cachedLanguage != locale.currentLanguageCode();
  const bool draftToLive = lastMode == Mode::draft && newOptions.mode == Mode::live;
  const bool reset = (languageChanged || newOptions.testingMode || draftToLive) &&
                     platform.files->applicationSupportDirectory().has_value();
  if (reset) cache.reset();
  store.transact([&](StoreTransaction& transaction) {
    if (reset) transaction.remove(key::etag);
    if (newOptions.subjectId) transaction.set(key::subjectId, *newOptions.subjectId);
    transaction.set(key::lastModeUsed, std::string(rawValue(newOptions.mode)));
    transaction.set(key::isBannerPresent, false);
    ensureSubjectId(transaction);
  });

  tasks->start([self = shared_from_this()]() -> Task<void> {
    co_await self->getCDNFile();
    if (StoredValues(*self->store.snapshot()).consentGivenType() != givenType::noAction) self->startRecurringCheck();
    self->startNetworkMonitor();
    self->startPermissionObservation();
  });
}

ConsentSDK::ConsentSDK(Platform platform) : core_(Core::make(std::move(platform))) {}

ConsentSDK::~ConsentSDK() {
  core_->close();
}

void ConsentSDK::close() {
  core_->close();
  core_->waitUntilQuiet(leavingLimit);
}

void ConsentSDK::setup(ConsentSDKOptions options) {
  core_->setup(std::move(options));
}

SDKStatus ConsentSDK::getStatus() const {
  return core_->sdkListener.isReady();
}

void ConsentSDK::isReady(std::function<void(SDKStatus)> callback) {
  if (!callback) return;
  Job firstReport([core = core_, &callback] { core->sdkListener.observe(std::move(callback)); });
  core_->callHost(firstReport);
}

void ConsentSDK::removeListeners() {
  core_->sdkListener.removeObserver();
}

std::optional<std::string> ConsentSDK::sdkVersion() const {
  return installedSDKVersion(*core_->platform.host);
}

SDKLogger& ConsentSDK::logger() {
  return core_->logger;
}

}  // namespace quillon
