// The cached configuration and the files it goes through.
#include <boost/json.hpp>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "tests/faults/Areas.h"
#include "tests/support/FailingFileSystem.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

// A newer configuration comes while the named change to the files fails.
Seen newConfigurationWhileFailing(Trial&, std::string_view change) {
  World world;
  world.start();
  world.restart();
  auto newer = validConfiguration();
  newer["version"] = 6;
  world.server.serve(boost::json::serialize(newer));
  world.store(key::cdnCachedTimestamp, std::int64_t{0});
  world.amend = [&](Platform& platform) {
    platform.files = std::make_shared<FailingFileSystem>(
        platform.files, [change](std::string_view attempted) { return attempted == change; });
  };
  world.restart();
  world.start();
  return {.status = world.sdk->getStatus() == SDKStatus::ready ? "ready" : "unavailable",
          .log = world.log(),
          .stored = "version " + std::to_string(world.stored().integer(key::configurationVersion, 0))};
}

}  // namespace

std::vector<Row> fileRows() {
  return {
      {"write",
       "a newer configuration cannot be written",
       {"ready", "Error saving CDN", "version 5"},
       [](Trial& trial) { return newConfigurationWhileFailing(trial, "write"); }},
  };
}

}  // namespace quillon::test
