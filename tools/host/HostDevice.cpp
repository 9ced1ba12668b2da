#include "tools/host/HostDevice.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "platform/linux/LinuxPlatform.h"
#include "platform/memory/FixedLocale.h"
#include "platform/parts/FixedAppTracking.h"
#include "platform/parts/FunctionConsentSink.h"
#include "tools/HostApplicationId.h"

namespace quillon::tools {
namespace {

// Writes log blocks to standard error, since standard output carries the responses.
class StandardErrorConsole : public Console {
 public:
  explicit StandardErrorConsole(std::shared_ptr<Console> system) : system_(std::move(system)) {}

  void write(std::string_view block) override {
    const std::scoped_lock lock(mutex_);
    std::fwrite(block.data(), 1, block.size(), stderr);
    std::fputc('\n', stderr);
  }
  [[noreturn]] void fatal(std::string_view message, std::string_view file) override {
    system_->fatal(message, file);
    std::abort();
  }

 private:
  const std::shared_ptr<Console> system_;
  std::mutex mutex_;
};

bool isInformationKey(const VantariKey& key) {
  switch (key.kind()) {
    case VantariKey::localNetworkUsageDescription:
    case VantariKey::fileProviderDomainUsageDescription:
    case VantariKey::systemExtensionUsageDescription:
      return true;
    default:
      return false;
  }
}

}  // namespace

void HeadlessApplication::setInformation(const std::string& key, std::string value) {
  const std::scoped_lock lock(mutex_);
  information_.insert_or_assign(key, std::move(value));
}

std::optional<std::string> HeadlessApplication::information(std::string_view key) const {
  const std::scoped_lock lock(mutex_);
  const auto entry = information_.find(key);
  return entry == information_.end() ? std::nullopt : std::optional(entry->second);
}

void SentSignals::add(const Signals& signals) {
  const std::scoped_lock lock(mutex_);
  signals_.push_back(signals);
}

std::vector<SentSignals::Signals> SentSignals::all() const {
  const std::scoped_lock lock(mutex_);
  return signals_;
}

HostDevice::HostDevice(const DeviceOptions& options) {
  LinuxOptions linux_{.applicationId = hostApplicationId};
  if (!options.dataDirectory.empty()) linux_.dataDirectory = options.dataDirectory;
  if (!options.resources.empty()) linux_.resourceDirectory = options.resources;
  if (!options.vendorUrl.empty()) linux_.vendorUrl = options.vendorUrl;
  platform_ = linuxPlatform(linux_);

  platform_.console = std::make_shared<StandardErrorConsole>(platform_.console);
  platform_.network = network_ = std::make_shared<StaticNetworkPath>(options.network);
  platform_.screens = screens_;
  platform_.tracking = std::make_shared<FixedAppTracking>(options.tracking, options.advertisingIdentifier);
  platform_.permissions = permissions_ = std::make_shared<SettablePermissionSources>(platform_.permissions);
  platform_.host = application_ = std::make_shared<HeadlessApplication>(platform_.host);
  if (!options.languages.empty()) platform_.locale = std::make_shared<FixedLocale>(options.languages);
  if (options.clockSeconds) {
    const WallTime start{std::chrono::seconds(*options.clockSeconds)};
    platform_.clock = clock_ = std::make_shared<VirtualClock>(start, TimeZone::device);
  }
  if (options.sink != DeviceOptions::Sink::absent) {
    FunctionConsentSink::Function function;
    if (options.sink == DeviceOptions::Sink::present) {
      function = [signals = signals_](const SentSignals::Signals& sent) { signals->add(sent); };
    }
    platform_.consentSink = std::make_shared<FunctionConsentSink>(std::move(function));
  }
  for (const std::string& entry : options.permissions) {
    const auto equals = entry.find('=');
    if (equals == std::string::npos || !setPermission(entry.substr(0, equals), entry.substr(equals + 1))) {
      throw std::invalid_argument("not a permission and its platform value: " + entry);
    }
  }
}

bool HostDevice::setPermission(const std::string& key, const std::string& value) {
  const VantariKey permission(key);
  if (isInformationKey(permission)) {
    application_->setInformation(key, value);
    return true;
  }
  int number = 0;
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
  if (error != std::errc() || end != value.data() + value.size()) return false;
  permissions_->set(permission, number);
  return true;
}

}  // namespace quillon::tools
