// The process-wide instance, defined here so that it uses the linked platform library.
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

// Never destroyed, like the instance.
Settings& settings() {
  static auto& instance = *new Settings;
  return instance;
}

Platform configuredPlatform() {
  const std::scoped_lock lock(settings().mutex);
  settings().taken = true;
  return linuxPlatform(settings().options, settings().screens);
}

// Stops the work at process exit, before what it uses is destroyed. A forked child has no threads to wait for.
struct ClosedAtExit {
  ConsentSDK& sdk;
  pid_t owner = ::getpid();

  explicit ClosedAtExit(ConsentSDK& closed) : sdk(closed) {}
  ClosedAtExit(const ClosedAtExit&) = delete;
  ClosedAtExit& operator=(const ClosedAtExit&) = delete;
  ~ClosedAtExit() {
    if (::getpid() == owner) sdk.close();
  }
};

}  // namespace

bool configure(LinuxOptions options) {
  return configure(std::move(options), nullptr);
}

bool configure(LinuxOptions options, std::shared_ptr<ScreenPresenter> screens) {
  std::unique_lock lock(settings().mutex);
  if (settings().taken) {
    lock.unlock();  // the logger may create the instance
    SDKLogger::shared().log("configure() was called after the first use of the SDK, and does nothing: call it first",
                            LogLevel::error, __func__, __FILE__, __LINE__);
    return false;
  }
  settings().options = std::move(options);
  settings().screens = std::move(screens);
  return true;
}

ConsentSDK& ConsentSDK::shared() {
  static auto& instance = *new ConsentSDK(configuredPlatform());
  static const ClosedAtExit atExit(instance);
  return instance;
}

SDKLogger& SDKLogger::shared() {
  return ConsentSDK::shared().logger();
}

}  // namespace quillon
