// One process of an application over a folder: real store, files and SDK; nothing runs but what is told to.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "platform/memory/ManualExecutors.h"
#include "platform/memory/MemoryConsole.h"
#include "platform/memory/VirtualClock.h"
#include "quillon/ConsentSDK.h"
#include "testing/DeviceServers.h"

namespace quillon::test {

// All that a suite holds at a moment.
struct SuiteImage {
  SuiteEntries entries;
  std::vector<JournalRecord> journal;

  bool operator==(const SuiteImage&) const = default;
};

[[nodiscard]] SuiteImage imageOf(const KeyValueSuite& suite);

// What the suite held after each update that was acknowledged, of all processes that tell it; the calls recorded are
// marked "begun" and "acknowledged".
struct Chronicle {
  std::vector<SuiteImage> images;
};

class PowerDevice {
 public:
  // With a chronicle, whatever the suite acknowledges is added to it.
  explicit PowerDevice(const std::filesystem::path& data, Chronicle* chronicle = nullptr);
  ~PowerDevice();

  std::shared_ptr<KeyValueSuite> suite();

  // The configuration that the server has, with so many purposes; that many are decided upon by the application.
  void publish(std::int64_t version, int purposes = 3, bool isOptOut = false);
  // Sets the SDK up and lets everything run.
  void start();
  ConsentSDK& sdk();
  void run() { executors_->runUntilIdle(); }
  std::string log() const;

 private:
  const std::shared_ptr<ManualExecutors> executors_ = std::make_shared<ManualExecutors>();
  const std::shared_ptr<MemoryConsole> console_ = std::make_shared<MemoryConsole>();
  const std::shared_ptr<testing::DeviceServers> servers_ = std::make_shared<testing::DeviceServers>();
  Platform platform_;
  std::unique_ptr<ConsentSDK> sdk_;
};

}  // namespace quillon::test
