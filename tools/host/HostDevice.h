// The simulated device of the headless host.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "platform/memory/SettablePermissionSources.h"
#include "platform/memory/StaticNetworkPath.h"
#include "platform/memory/VirtualClock.h"
#include "tools/host/HostScreens.h"

namespace quillon::tools {

// The device's command-line options.
struct DeviceOptions {
  std::filesystem::path dataDirectory;  // empty: the user's data folder
  std::filesystem::path resources;      // empty: the executable's folder
  std::string vendorUrl;                // empty: the built-in one
  std::vector<std::string> languages;   // empty: the environment's
  TrackingAuthorization tracking = TrackingAuthorization::notDetermined;
  std::optional<std::string> advertisingIdentifier;
  std::vector<std::string> permissions;  // "KEY=VALUE"
  NetworkStatus network = NetworkStatus::satisfied;
  std::optional<std::int64_t> clockSeconds;                                 // start time of a virtual clock
  enum class Sink { present, withoutMethod, absent } sink = Sink::present;  // the application's analytics library
};

// Stores the signals passed to the application's analytics library. Thread-safe.
class SentSignals {
 public:
  using Signals = std::map<std::string, std::string>;

  void add(const Signals& signals);
  std::vector<Signals> all() const;

 private:
  mutable std::mutex mutex_;
  std::vector<Signals> signals_;
};

// The host application, with an information dictionary that can be changed at run time. Thread-safe.
class HeadlessApplication : public HostApplication {
 public:
  explicit HeadlessApplication(std::shared_ptr<HostApplication> system) : system_(std::move(system)) {}

  void setInformation(const std::string& key, std::string value);

  std::optional<std::string> componentVersion(std::string_view identifier) const override {
    return system_->componentVersion(identifier);
  }
  std::optional<std::string> information(std::string_view key) const override;
  std::string localized(std::string_view key, std::string_view comment) const override {
    return system_->localized(key, comment);
  }
  std::optional<std::string> resource(std::string_view name, std::string_view extension) const override {
    return system_->resource(name, extension);
  }
  std::string deviceDescription() const override { return system_->deviceDescription(); }

 private:
  const std::shared_ptr<HostApplication> system_;
  mutable std::mutex mutex_;
  std::map<std::string, std::string, std::less<>> information_;
};

// Uses the real store, files, HTTP and threads; permissions and similar device answers can be set.
class HostDevice {
 public:
  explicit HostDevice(const DeviceOptions& options);

  const Platform& platform() const { return platform_; }
  StaticNetworkPath& network() { return *network_; }
  const SentSignals& sentSignals() const { return *signals_; }
  HostScreens& screens() { return *screens_; }
  // Null with the real clock.
  VirtualClock* clock() { return clock_.get(); }

  // Sets the value of a permission key's source: a number, or a text for information-dictionary keys. False for the
  // wrong type.
  bool setPermission(const std::string& key, const std::string& value);

 private:
  Platform platform_;
  std::shared_ptr<StaticNetworkPath> network_;
  std::shared_ptr<VirtualClock> clock_;
  std::shared_ptr<SettablePermissionSources> permissions_;
  std::shared_ptr<HeadlessApplication> application_;
  std::shared_ptr<HostScreens> screens_ = std::make_shared<HostScreens>();
  std::shared_ptr<SentSignals> signals_ = std::make_shared<SentSignals>();
};

}  // namespace quillon::tools
