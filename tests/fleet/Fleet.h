#pragma once

#include <chrono>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/memory/ManualExecutors.h"
#include "platform/memory/StaticNetworkPath.h"
#include "platform/memory/VirtualClock.h"
#include "tests/fleet/FleetDevice.h"
#include "tests/fleet/FleetNetwork.h"
#include "tools/serve/UploadStore.h"

namespace quillon::fleet {

struct FleetPlan {
  int devices = 1000;
  std::chrono::seconds duration = std::chrono::hours(24);
  std::chrono::seconds startsWithin = std::chrono::minutes(30);
  int changes = 2;  // of one purpose, a device
  // What falls into one step happens at its end, all at the same time: longer steps are coarser and quicker. At most a
  // minute, by which a user's acts are apart.
  std::chrono::seconds step = std::chrono::seconds(1);
  ConsentSDKOptions options;

  // A time without servers; none when it lasts no time.
  std::chrono::seconds outageAt = std::chrono::hours(8);
  std::chrono::seconds outage = std::chrono::seconds(0);
  // servers: the way is good, but nobody answers. network: each device sees its network go and come back, all of them
  // at the same moment.
  enum class OutageOf { servers, network } outageOf = OutageOf::servers;
  // Exists while the outage lasts, for servers that refuse meanwhile. Empty: requests end unanswered on their way.
  std::filesystem::path outageFile;
};

// Many devices in one process on one virtual clock, against real servers. One thread runs all of them.
class Fleet {
 public:
  explicit Fleet(FleetPlan plan);

  // Runs the plan, and then until what is pending has had the time to be uploaded.
  void run();

  const FleetPlan& plan() const { return plan_; }
  std::map<std::int64_t, Traffic> traffic() const { return network_->traffic(); }
  const std::vector<std::unique_ptr<FleetDevice>>& devices() const { return devices_; }

 private:
  void beginOutage();
  void endOutage();
  // Lets all that has begun come to its end.
  void settle();

  const FleetPlan plan_;
  std::shared_ptr<VirtualClock> clock_;
  std::shared_ptr<ManualExecutors> executors_ = std::make_shared<ManualExecutors>();
  std::shared_ptr<StaticNetworkPath> path_ = std::make_shared<StaticNetworkPath>();
  std::shared_ptr<FleetNetwork> network_;
  std::vector<std::unique_ptr<FleetDevice>> devices_;
};

// What the users of a fleet decided, against what the server kept.
struct Accounting {
  std::int64_t decisions = 0;       // taken by users
  std::int64_t uploads = 0;         // accepted by the server
  std::int64_t purposes = 0;        // with a decision, over all devices
  std::int64_t missing = 0;         // of them, not at the server
  std::int64_t different = 0;       // of them, with another status at the server than on the device
  std::int64_t repeated = 0;        // decisions that the server got more than once
  std::int64_t unknown = 0;         // at the server, but decided on no device
  std::int64_t contradictions = 0;  // on the device itself: not what the user chose last

  bool isComplete() const { return missing + different + repeated + unknown + contradictions == 0; }
};

std::expected<Accounting, std::string> account(const Fleet& fleet, const tools::UploadStore& uploads);

}  // namespace quillon::fleet
