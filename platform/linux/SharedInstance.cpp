// The process-wide instance. It lives here so that an application gets the services of the platform library it links.
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
  bool taken = false;
};

Settings& settings() {
  static Settings instance;
  return instance;
}

LinuxOptions takeOptions() {
  const std::scoped_lock lock(settings().mutex);
  settings().taken = true;
  return settings().options;
}

}  // namespace

bool configure(LinuxOptions options) {
  const std::scoped_lock lock(settings().mutex);
  if (settings().taken) return false;
  settings().options = std::move(options);
  return true;
}

ConsentSDK& ConsentSDK::shared() {
  static ConsentSDK instance(linuxPlatform(takeOptions()));
  return instance;
}

SDKLogger& SDKLogger::shared() {
  return ConsentSDK::shared().logger();
}

}  // namespace quillon
