// Construction, setup and readiness of an instance.
#include "quillon/ConsentSDK.h"

#include "core/ConsentSDK/ConsentSDKCore.h"
#include "core/ConsentSDK/WithoutThrowing.h"

namespace quillon {
namespace {

constexpr std::chrono::seconds closeLimit{2};

}  // namespace

ConsentSDK::ConsentSDK(Platform platform) : core_(Core::make(std::move(platform))) {}

ConsentSDK::~ConsentSDK() {
  withoutThrowing([&] { core_->close(); });
}

void ConsentSDK::close() {
  withoutThrowing([&] {
    core_->close();
    core_->work.waitUntilIdle(closeLimit);
  });
}

void ConsentSDK::setup(ConsentSDKOptions options) {
  withoutThrowing([&] { core_->setUp.run(std::move(options)); });
}

SDKStatus ConsentSDK::getStatus() const {
  return core_->events.readiness.isReady();
}

void ConsentSDK::isReady(std::function<void(SDKStatus)> callback) {
  if (!callback) return;
  Job firstReport([core = core_, &callback] { core->events.readiness.observe(std::move(callback)); });
  withoutThrowing([&] { core_->work.callHost(firstReport); });
}

void ConsentSDK::removeListeners() {
  core_->events.readiness.removeObserver();
}

std::optional<std::string> ConsentSDK::sdkVersion() const {
  return withoutThrowing([&] { return installedSDKVersion(*core_->platform.host); }, std::optional<std::string>());
}

SDKLogger& ConsentSDK::logger() {
  return core_->logger;
}

std::shared_ptr<ScreenServices> ConsentSDK::screens() const {
  return {core_, &core_->screens};
}

std::shared_ptr<SignalSource> ConsentSDK::signalSource() const {
  return {core_, &core_->tradeSignals};
}

}  // namespace quillon
