// A device with one application: the real store, files and threads, and a network with one document.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "bench/TemporaryFolder.h"
#include "platform/Clock.h"
#include "platform/KeyValueSuite.h"
#include "platform/ScreenPresenter.h"
#include "quillon/ConsentSDK.h"
#include "quillon/MainConfiguration.h"

namespace quillon::bench {

/// The keys of an application with a handful of purposes.
inline constexpr int kStoredKeys = 300;

/// Posts a job to the main loop.
using MainQueuePost = std::function<void(std::function<void()> job)>;

class Device {
 public:
  /// A device with a stopped clock, so that only measured work runs. The configuration can be downloaded; every upload
  /// fails at once, so that saving costs the same as without a network.
  explicit Device(std::string configuration);
  /// As above, with the real clock.
  static Device ticking(std::string configuration) { return Device(std::move(configuration), nullptr); }
  /// As above, with screens and their main loop.
  static Device showing(std::string configuration, std::shared_ptr<ScreenPresenter> screens, MainQueuePost post);

  /// Starts the application, before setup.
  void launch();
  /// Sets up and waits until the configuration is in use.
  void setUp();
  /// Stores a decision on each of the purposes from 1 to `purposes`.
  void decide(int purposes);

  ConsentSDK& sdk() { return *sdk_; }
  ScreenServices& screens() { return *sdk_->screens(); }
  static ConsentSDKOptions options();

 private:
  Device(std::string configuration, std::shared_ptr<Clock> clock, std::shared_ptr<ScreenPresenter> screens = nullptr,
         MainQueuePost post = {});

  std::unique_ptr<TemporaryFolder> folder_ = std::make_unique<TemporaryFolder>();
  std::string configuration_;
  std::shared_ptr<Clock> clock_;  // null: the real clock
  std::shared_ptr<ScreenPresenter> screens_;
  MainQueuePost post_;
  std::shared_ptr<KeyValueStore> store_;
  std::unique_ptr<ConsentSDK> sdk_;
};

Purpose purpose(std::int64_t id);
/// A document with `count` purposes, numbered from 1.
std::string configurationWithPurposes(int count);

}  // namespace quillon::bench
