// The device that the headless host pretends to run on.
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

// What the command line says about the device.
struct DeviceOptions {
  std::filesystem::path dataDirectory;  // empty: the user's
  std::filesystem::path resources;      // empty: the executable's folder
  std::string vendorUrl;                // empty: the product's
  std::vector<std::string> languages;   // empty: those of the environment
  TrackingAuthorization tracking = TrackingAuthorization::notDetermined;
  std::optional<std::string> advertisingIdentifier;
  std::vector<std::string> permissions;  // "KEY=VALUE"
  NetworkStatus network = NetworkStatus::satisfied;
  std::optional<std::int64_t> clockSeconds;                                 // starts a virtual clock there
  enum class Sink { present, withoutMethod, absent } sink = Sink::present;  // the application's analytics library
};

// Remembers what the application's analytics library was given. Thread-safe.
class SentSignals {
 public:
  using Signals = std::map<std::string, std::string>;

  void add(const Signals& signals);
  std::vector<Signals> all() const;

 private:
  mutable std::mutex mutex_;
  std::vector<Signals> signals_;
};

// The application around the SDK, with an information dictionary that can be changed while it runs. Thread-safe.
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

// Real store, files, HTTP and threads; what a device decides can be set.
class HostDevice {
 public:
  explicit HostDevice(const DeviceOptions& options);

  const Platform& platform() const { return platform_; }
  StaticNetworkPath& network() { return *network_; }
  const SentSignals& sentSignals() const { return *signals_; }
  HostScreens& screens() { return *screens_; }
  // Null when the clock is the real one.
  VirtualClock* clock() { return clock_.get(); }

  // Sets what the source behind a permission key answers: a number, or a text for the keys of the information
  // dictionary. False when the value is of the wrong kind.
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
