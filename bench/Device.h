// A device with one application on it: the real store, files and threads, and a network of one document.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "bench/TemporaryFolder.h"
#include "platform/Clock.h"
#include "platform/ScreenPresenter.h"
#include "quillon/ConsentSDK.h"
#include "quillon/MainConfiguration.h"

namespace quillon::bench {

/// As much as an application with a handful of purposes and their switches keeps.
inline constexpr int kStoredKeys = 300;

/// Runs a job in a later turn of the main loop.
using MainQueuePost = std::function<void(std::function<void()> job)>;

class Device {
 public:
  /// A device whose clock stands still, so that nothing happens but what is measured. The configuration can be
  /// downloaded; every upload fails at once, so that saving costs no more than it does without a network.
  explicit Device(std::string configuration);
  /// The same with the clock of the machine.
  static Device ticking(std::string configuration) { return Device(std::move(configuration), nullptr); }
  /// The same with screens, and with the main loop that they are on.
  static Device showing(std::string configuration, std::shared_ptr<ScreenPresenter> screens, MainQueuePost post);

  /// As after a start of the process, before set-up.
  void launch();
  /// Sets up and waits until the configuration is in use.
  void setUp();
  /// Stores a decision on each of that many purposes, from 1 on.
  void decide(int purposes);

  ConsentSDK& sdk() { return *sdk_; }
  ScreenServices& screens() { return *sdk_->screens(); }
  static ConsentSDKOptions options();

 private:
  Device(std::string configuration, std::shared_ptr<Clock> clock, std::shared_ptr<ScreenPresenter> screens = nullptr,
         MainQueuePost post = {});

  std::unique_ptr<TemporaryFolder> folder_ = std::make_unique<TemporaryFolder>();
  std::string configuration_;
  std::shared_ptr<Clock> clock_;  // null: the machine's
  std::shared_ptr<ScreenPresenter> screens_;
  MainQueuePost post_;
  std::shared_ptr<KeyValueStore> store_;
  std::unique_ptr<ConsentSDK> sdk_;
};

Purpose purpose(std::int64_t id);
/// A document with that many purposes, numbered from 1.
std::string configurationWithPurposes(int count);

}  // namespace quillon::bench
