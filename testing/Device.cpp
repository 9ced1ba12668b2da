#include <atomic>
#include <utility>

#include "core/Json/Codec.h"
#include "core/Network/Responses.h"
#include "core/Permissions/PermissionTranslation.h"
#include "platform/Platform.h"
#include "platform/memory/FailingFileSystem.h"
#include "platform/memory/FixedHostApplication.h"
#include "platform/memory/FixedLocale.h"
#include "platform/memory/MemoryConsole.h"
#include "platform/memory/MemoryFileSystem.h"
#include "platform/memory/MemoryKeyStore.h"
#include "platform/memory/MemoryStore.h"
#include "platform/memory/RecordingPresenter.h"
#include "platform/memory/ScriptedHttpSession.h"
#include "platform/memory/SeededRandom.h"
#include "platform/memory/SettablePermissionSources.h"
#include "platform/memory/SettablePrivacySignals.h"
#include "platform/memory/StaticNetworkPath.h"
#include "platform/memory/VirtualClock.h"
#include "platform/parts/FixedAppTracking.h"
#include "quillon/Testing.h"
#include "testing/DeviceExecutors.h"
#include "testing/DeviceServers.h"

namespace quillon::testing {
namespace {

// The application's analytics library: stores the last signals. Thread-safe.
class NotingConsentSink : public ConsentSink {
 public:
  bool takesConsent() const override { return true; }
  void setConsent(const std::map<std::string, std::string>& values) override {
    const std::scoped_lock lock(mutex_);
    values_ = values;
  }
  std::map<std::string, std::string> values() const {
    const std::scoped_lock lock(mutex_);
    return values_;
  }

 private:
  mutable std::mutex mutex_;
  std::map<std::string, std::string> values_;
};

}  // namespace

class Device::World {
 public:
  explicit World(std::chrono::sys_seconds now) : clock(std::make_shared<VirtualClock>(now)) {}

  // All services except the locale outlive an instance. They run on SDK threads and share ownership of what they use.
  Platform platform() {
    Platform platform;
    platform.console = console;
    platform.clock = clock;
    platform.executors = executors;
    platform.files = std::make_shared<FailingFileSystem>(
        files, [isDiskFull = isDiskFull](std::string_view change) { return change == "write" && *isDiskFull; });
    platform.store = store;
    platform.http = std::make_shared<ScriptedHttpSession>(
        [servers = servers](const HttpRequest& request) { return servers->exchange(request); });
    platform.network = network;
    const std::scoped_lock lock(mutex);
    platform.locale = std::make_shared<FixedLocale>(languages);
    platform.tracking = std::make_shared<FixedAppTracking>();
    platform.permissions = permissions;
    platform.signals = signals;
    platform.host = std::make_shared<FixedHostApplication>();
    platform.random = random;
    platform.keys = keys;
    platform.consentSink = consentSink;
    platform.screens = screens;
    platform.vendorUrl = DeviceServers::address;
    return platform;
  }

  const std::shared_ptr<VirtualClock> clock;
  const std::shared_ptr<DeviceExecutors> executors = std::make_shared<DeviceExecutors>();
  const std::shared_ptr<MemoryConsole> console = std::make_shared<MemoryConsole>();
  const std::shared_ptr<MemoryFileSystem> files = std::make_shared<MemoryFileSystem>("/data");
  const std::shared_ptr<DeviceServers> servers = std::make_shared<DeviceServers>();
  const std::shared_ptr<StaticNetworkPath> network = std::make_shared<StaticNetworkPath>();
  const std::shared_ptr<SettablePermissionSources> permissions = std::make_shared<SettablePermissionSources>();
  const std::shared_ptr<SettablePrivacySignals> signals = std::make_shared<SettablePrivacySignals>();
  const std::shared_ptr<RecordingPresenter> screens = std::make_shared<RecordingPresenter>();
  const std::shared_ptr<NotingConsentSink> consentSink = std::make_shared<NotingConsentSink>();
  const std::shared_ptr<std::atomic<bool>> isDiskFull = std::make_shared<std::atomic<bool>>(false);
  const std::shared_ptr<SeededRandom> random = std::make_shared<SeededRandom>();
  const std::shared_ptr<MemoryKeyStore> keys = std::make_shared<MemoryKeyStore>();
  const std::shared_ptr<MemoryStore> store = std::make_shared<MemoryStore>(
      [isDiskFull = isDiskFull] { return *isDiskFull ? MemoryFault::before : MemoryFault::none; });
  std::mutex mutex;  // guards the member below
  std::vector<std::string> languages = {"en"};
};

Device::Device(std::chrono::sys_seconds now) : world_(std::make_shared<World>(now)) {}

Device::~Device() = default;

std::unique_ptr<ConsentSDK> Device::launch() const {
  return std::make_unique<ConsentSDK>(world_->platform());
}

std::function<void(Platform&)> Device::services() const {
  return [world = world_](Platform& platform) { platform = world->platform(); };
}

ConsentSDKOptions Device::options() const {
  return {.appUrl = DeviceServers::address,
          .cdnUrl = DeviceServers::address,
          .tenantId = "tenant",
          .appId = "app",
          .logLevel = LogLevel::info};
}

void Device::settle() {
  world_->executors->settle();
}

void Device::advance(std::chrono::milliseconds time) {
  settle();
  world_->clock->advance(time, [this] { settle(); });
  settle();
}

std::chrono::sys_seconds Device::now() const {
  return std::chrono::floor<std::chrono::seconds>(world_->clock->now());
}

void Device::publish(std::string configuration) {
  world_->servers->setConfiguration(std::move(configuration));
}

void Device::setLocation(const std::string& country, const std::string& state) {
  CurrentLocationResponse response;
  response.data.emplace();
  response.data->countryISOCode = {{"en", country}};
  response.data->stateISOCode = {{"en", state}};
  world_->servers->setLocation(encode(response));
}

void Device::setOnline(bool isOnline) {
  world_->servers->setReachable(isOnline);
  world_->network->set(isOnline ? NetworkStatus::satisfied : NetworkStatus::unsatisfied);
}

void Device::answer(std::function<std::optional<Response>(const Request&)> script) {
  world_->servers->setScript(std::move(script));
}

std::vector<Request> Device::requests() const {
  return world_->servers->requests();
}

std::vector<std::string> Device::uploads() const {
  return world_->servers->uploads();
}

bool Device::setPermission(const VantariKey& permission, ConsentStatus status) {
  // Platform values are small numbers whose meaning depends on the source, so all are tried.
  constexpr int greatestAnswer = 9;
  for (int answer = 0; answer <= greatestAnswer; ++answer) {
    if (consentFromPlatformValue(permission.kind(), answer) != status) continue;
    world_->permissions->set(permission, answer);
    return true;
  }
  return false;
}

void Device::setPrivacySignal(bool isOn) {
  world_->signals->set(isOn);
}

void Device::setLanguages(std::vector<std::string> languages) {
  const std::scoped_lock lock(world_->mutex);
  world_->languages = std::move(languages);
}

void Device::setDiskFull(bool isFull) {
  *world_->isDiskFull = isFull;
}

std::vector<std::string> Device::takeScreens() {
  return world_->screens->take();
}

std::map<std::string, std::string> Device::consentMode() const {
  return world_->consentSink->values();
}

std::string Device::log() const {
  std::string text;
  for (const std::string& block : world_->console->blocks()) text += block + "\n";
  return text;
}

}  // namespace quillon::testing
