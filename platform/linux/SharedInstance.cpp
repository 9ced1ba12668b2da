// The process-wide instance. It lives here so that an application gets the services of the platform library it links.
#include <memory>
#include <mutex>
#include <utility>

#include "platform/linux/LinuxPlatform.h"
#include "quillon/ConsentSDK.h"
#include "quillon/SDKLogger.h"

namespace quillon {
namespace {

struct Settings {
  std::mutex mutex;  // guards the members below
  LinuxOptions options;
  std::shared_ptr<ScreenPresenter> screens;
  bool taken = false;
};

Settings& settings() {
  static Settings instance;
  return instance;
}

Platform configuredPlatform() {
  const std::scoped_lock lock(settings().mutex);
  settings().taken = true;
  return linuxPlatform(settings().options, settings().screens);
}

}  // namespace

bool configure(LinuxOptions options) {
  return configure(std::move(options), nullptr);
}

bool configure(LinuxOptions options, std::shared_ptr<ScreenPresenter> screens) {
  const std::scoped_lock lock(settings().mutex);
  if (settings().taken) return false;
  settings().options = std::move(options);
  settings().screens = std::move(screens);
  return true;
}

ConsentSDK& ConsentSDK::shared() {
  static ConsentSDK instance(configuredPlatform());
  return instance;
}

SDKLogger& SDKLogger::shared() {
  return ConsentSDK::shared().logger();
}

}  // namespace quillon
