// One device with one application on it: real store, files, threads and HTTP; time and the device's answers are driven.
#pragma once

#include <boost/json/object.hpp>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/Persistance/UserDefaults/StoredValues.h"
#include "platform/Platform.h"
#include "platform/memory/MemoryConsole.h"
#include "platform/memory/SettablePermissionSources.h"
#include "platform/memory/StaticNetworkPath.h"
#include "platform/memory/VirtualClock.h"
#include "quillon/ConsentSDK.h"
#include "tests/support/ConsentServer.h"
#include "tests/support/TemporaryFolder.h"

namespace quillon::test {

// A valid configuration with three purposes (2 is essential, 3 is bound to app tracking) and two permissions; opt-in,
// 12 months. A test changes only what it is about.
boost::json::object validConfiguration();
boost::json::object& bannerOf(boost::json::object& configuration);
// The same, and a second banner for that place, which is opt-out.
boost::json::object configurationOfTwoLaws(std::string_view place);

// 14 November 2023, 22:13:20 UTC.
inline constexpr std::int64_t startSeconds = 1'700'000'000;

class World {
 public:
  World() : World(std::nullopt) {}
  // Over data that outlives it, as an installed application has.
  explicit World(std::optional<std::filesystem::path> installed);

  // Options that lead to the server, in English, at location DE.
  ConsentSDKOptions options() const;

  // Sets the SDK up and waits until loading is over.
  void start() { start(options()); }
  void start(ConsentSDKOptions chosen);
  // The same when the cached configuration has become too old to serve unasked.
  void startLater() { startLater(options()); }
  void startLater(ConsentSDKOptions chosen);
  // Ends the process, as it were, and begins another one over the same disk.
  void restart();
  // The services that one process gets.
  Platform process();

  std::shared_ptr<const SuiteEntries> snapshot();
  StoredValues stored();
  std::optional<std::string> text(std::string_view key) { return stored().string(key); }
  void store(std::string_view key, PropertyValue value);

  void advance(std::chrono::milliseconds time);
  // Waits until every callback that was due has run.
  void drainMainQueue();
  // Waits until nothing is under way, neither in the background nor on the main queue.
  void settle();
  // Runs the function on the main queue and waits for it.
  void onMain(const std::function<void()>& function);

  std::filesystem::path file() const { return data / "quillon-sdk-cdn.json"; }
  std::filesystem::path backup() const { return data / "quillon-sdk-cdn-backup.json"; }

  // The bodies of the uploads that the server has seen, parsed.
  std::vector<boost::json::object> uploads() const;
  // Everything that was logged, block after block.
  std::string log() const;

  TemporaryFolder folder{TemporaryFolder::fastParent()};
  const std::filesystem::path data;
  ConsentServer server;
  std::shared_ptr<VirtualClock> clock;
  std::shared_ptr<MemoryConsole> console;
  std::shared_ptr<StaticNetworkPath> network;
  std::shared_ptr<SettablePermissionSources> permissions;
  TrackingAuthorization tracking = TrackingAuthorization::notDetermined;
  // Called with every new platform before an SDK is made over it: the place to put faults in.
  std::function<void(Platform&)> amend;
  Platform platform;
  std::unique_ptr<ConsentSDK> sdk;

 private:
  std::shared_ptr<const SuiteEntries> held_;
};

}  // namespace quillon::test
