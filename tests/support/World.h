// A device with one application: real store, files, threads and HTTP; time and the device's answers are controlled.
#pragma once

#include <boost/json/array.hpp>
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
// 12 months. Tests change only what they are about.
boost::json::object validConfiguration();
// As above, with these members in place of its own.
boost::json::object configurationWith(const boost::json::object& changes);
// A list of purposes of which nothing else is said: 2 is essential.
boost::json::array purposesOf(std::initializer_list<std::int64_t> ids);
boost::json::object& bannerOf(boost::json::object& configuration);
// As above, with a second, opt-out banner for `place`.
boost::json::object configurationOfTwoLaws(std::string_view place);

// 14 November 2023, 22:13:20 UTC.
inline constexpr std::int64_t startSeconds = 1'700'000'000;

class World {
 public:
  World() : World(std::nullopt) {}
  // Uses data that outlives it, like an installed application.
  explicit World(std::optional<std::filesystem::path> installed);

  // Options with the server's URLs, in English, at location DE.
  ConsentSDKOptions options() const;

  // Sets the SDK up and waits until loading has ended.
  void start() { start(options()); }
  void start(ConsentSDKOptions chosen);
  // As above, once the cached configuration is too old to be used without a request.
  void startLater() { startLater(options()); }
  void startLater(ConsentSDKOptions chosen);
  // Simulates a restart of the process on the same disk.
  void restart();
  // The services of one process.
  Platform process();

  std::shared_ptr<const SuiteEntries> snapshot();
  StoredValues stored();
  std::optional<std::string> text(std::string_view key) { return stored().string(key); }
  void store(std::string_view key, PropertyValue value);

  void advance(std::chrono::milliseconds time);
  // Waits until every due callback has run.
  void drainMainQueue();
  // Waits until no work is running, neither in the background nor on the main queue.
  void settle();
  // Runs the function on the main queue and waits for it.
  void onMain(const std::function<void()>& function);

  std::filesystem::path file() const { return data / "quillon-sdk-cdn.json"; }
  std::filesystem::path backup() const { return data / "quillon-sdk-cdn-backup.json"; }

  // The uploads received by the server, parsed.
  std::vector<boost::json::object> uploads() const;
  // The complete log, block after block.
  std::string log() const;

  TemporaryFolder folder{TemporaryFolder::fastParent()};
  const std::filesystem::path data;
  ConsentServer server;
  std::shared_ptr<VirtualClock> clock;
  std::shared_ptr<MemoryConsole> console;
  std::shared_ptr<StaticNetworkPath> network;
  std::shared_ptr<SettablePermissionSources> permissions;
  TrackingAuthorization tracking = TrackingAuthorization::notDetermined;
  // Called with every new platform before an SDK uses it, to inject faults.
  std::function<void(Platform&)> amend;
  Platform platform;
  std::unique_ptr<ConsentSDK> sdk;

 private:
  std::shared_ptr<const SuiteEntries> held_;
};

}  // namespace quillon::test
