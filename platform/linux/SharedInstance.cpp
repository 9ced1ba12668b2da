// The process-wide instance. It lives here so that an application gets the services of the platform library it links.
#include <unistd.h>

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

// Ends with the process that made it. A forked child has none of its threads, and not even their stacks: when the child
// exits there is nothing to wait for, and looking for it would crash.
struct SharedInstance {
  ConsentSDK* sdk = new ConsentSDK(configuredPlatform());
  pid_t owner = ::getpid();

  SharedInstance() = default;
  SharedInstance(const SharedInstance&) = delete;
  SharedInstance& operator=(const SharedInstance&) = delete;
  ~SharedInstance() {
    if (::getpid() == owner) delete sdk;
  }
};

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
  static const SharedInstance instance;
  return *instance.sdk;
}

SDKLogger& SDKLogger::shared() {
  return ConsentSDK::shared().logger();
}

}  // namespace quillon
