// One process of an application on a folder: real store, files and SDK; work runs only on demand.
#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include "platform/Platform.h"
#include "platform/memory/ManualExecutors.h"
#include "platform/memory/VirtualClock.h"
#include "quillon/ConsentSDK.h"
#include "testing/DeviceServers.h"

namespace quillon::test {

// A suite's complete content.
struct SuiteImage {
  SuiteEntries entries;
  std::vector<JournalRecord> journal;

  bool operator==(const SuiteImage&) const = default;
};

[[nodiscard]] SuiteImage imageOf(const KeyValueSuite& suite);

// The suite's content after each acknowledged update of all recorded processes; recorded calls are marked "begun" and
// "acknowledged".
struct Chronicle {
  std::vector<SuiteImage> images;
};

class PowerDevice {
 public:
  // Acknowledged updates are added to the chronicle, if given.
  explicit PowerDevice(const std::filesystem::path& data, Chronicle* chronicle = nullptr);
  ~PowerDevice();

  std::shared_ptr<KeyValueSuite> suite();

  // Publishes a configuration with `purposes` purposes.
  void publish(std::int64_t version, int purposes = 3, bool isOptOut = false);
  void disconnect() { servers_->setReachable(false); }
  // Sets the SDK up and runs all work.
  void start();
  ConsentSDK& sdk();
  void run() { executors_->runUntilIdle(); }

 private:
  const std::shared_ptr<ManualExecutors> executors_ = std::make_shared<ManualExecutors>();
  const std::shared_ptr<testing::DeviceServers> servers_ = std::make_shared<testing::DeviceServers>();
  Platform platform_;
  std::unique_ptr<ConsentSDK> sdk_;
};

}  // namespace quillon::test
