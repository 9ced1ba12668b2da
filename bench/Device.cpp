#include "bench/Device.h"

#include <stdexcept>
#include <utility>

#include "core/Json/Codec.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Persistance/UserDefaults/StoredValues.h"
#include "platform/linux/LinuxPlatform.h"
#include "platform/memory/MemoryConsole.h"
#include "platform/memory/ScriptedHttpSession.h"
#include "platform/memory/StaticNetworkPath.h"
#include "platform/memory/VirtualClock.h"

namespace quillon::bench {

Device::Device(std::string configuration)
    : Device(std::move(configuration), std::make_shared<VirtualClock>(WallTime(std::chrono::seconds(1'700'000'000)))) {}

Device::Device(std::string configuration, std::shared_ptr<Clock> clock, std::shared_ptr<ScreenPresenter> screens,
               MainQueuePost post)
    : configuration_(std::move(configuration)),
      clock_(std::move(clock)),
      screens_(std::move(screens)),
      post_(std::move(post)) {
  launch();
}

Device Device::showing(std::string configuration, std::shared_ptr<ScreenPresenter> screens, MainQueuePost post) {
  return {std::move(configuration), nullptr, std::move(screens), std::move(post)};
}

void Device::launch() {
  sdk_.reset();
  Platform platform = linuxPlatform(
      {.applicationId = "bench", .dataDirectory = folder_->path() / "data", .postToMainQueue = post_}, screens_);
  platform.console = std::make_shared<MemoryConsole>();
  platform.network = std::make_shared<StaticNetworkPath>();
  if (clock_) platform.clock = clock_;
  platform.http = std::make_shared<ScriptedHttpSession>([this](const HttpRequest& request) {
    const bool isUpload = request.body.has_value();
    return HttpResponse{request.url, isUpload ? 503 : 200, {}, isUpload ? std::string() : configuration_};
  });
  store_ = platform.store;
  sdk_ = std::make_unique<ConsentSDK>(std::move(platform));
}

void Device::setUp() {
  sdk_->setup(options());
  sdk_->settled().wait();
  if (sdk_->getStatus() != SDKStatus::ready) throw std::runtime_error("the SDK is not ready");
}

void Device::decide(int purposes) {
  const auto suite = store_->open(key::suiteName, {}).value();
  const auto stored = suite->update([&](const SuiteEntries& current) {
    StoreTransaction transaction(current);
    for (int id = 1; id <= purposes; ++id) {
      transaction.set(PurposeKey(id), std::string(rawValue(ConsentStatus::granted)));
    }
    return transaction.take();
  });
  if (!stored) throw std::runtime_error("the decisions were not stored");
}

ConsentSDKOptions Device::options() {
  return {.appUrl = "http://app/", .cdnUrl = "http://cdn/", .tenantId = "t", .appId = "a", .locationCode = "DE"};
}

Purpose purpose(std::int64_t id) {
  Purpose result;
  result.purposeId = id;
  return result;
}

std::string configurationWithPurposes(int count) {
  BannerConfig banner;
  banner.complianceType = ComplianceType::optIn;
  MainConfiguration configuration;
  configuration.version = 1;
  configuration.bannerConfig.emplace();
  configuration.bannerConfig->categories["default"] = banner;
  configuration.purposes.emplace();
  for (int id = 1; id <= count; ++id) {
    Purpose& added = configuration.purposes->emplace_back(purpose(id));
    added.purposeName = LocalizedText{{"en", "Purpose " + std::to_string(id)}};
  }
  return encode(configuration);
}

}  // namespace quillon::bench
