// Faults of the message buses, the sources of the device's permissions.
#include <stdlib.h>

#include "platform/linux/PermissionSources/LinuxPermissionSources.h"
#include "tests/faults/Areas.h"
#include "tests/faults/Damage.h"
#include "tests/platform/FalseBus.h"
#include "tests/platform/PrivateBus.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

using Stopwatch = std::chrono::steady_clock;

constexpr const char* storeName = "org.freedesktop.impl.portal.PermissionStore";

// A device with its buses at this address: it starts, gets an answer and queries its camera. No bus may block any of
// this for long, and only a correct store's reply grants the camera.
Seen overBus(Trial& trial, const std::string& address) {
  ::setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
  ::setenv("DBUS_SYSTEM_BUS_ADDRESS", address.c_str(), 1);
  World world;
  world.amend = [](Platform& platform) {
    platform.permissions = std::make_shared<LinuxPermissionSources>("com.example.reader");
  };
  const auto begin = Stopwatch::now();
  world.start();
  trial.expect(world.sdk->acceptOrReject(true).get(), "the answer is not acknowledged");
  const auto camera = world.sdk->checkConsentBy(VantariKey::cameraUsageDescription).get();
  trial.expect(world.sdk->get(VantariKey::cameraUsageDescription) == camera, "get() and checkConsentBy() disagree");
  Seen result = seen(world);
  world.sdk.reset();
  world.platform = {};
  trial.expect(Stopwatch::now() - begin < std::chrono::seconds(20), "a start, an answer and leaving took too long");
  result.log = world.log();
  world.amend = {};
  world.start();
  result.stored = seen(world).stored + " camera=" + std::string(rawValue(camera));
  return result;
}

using Run = std::function<Seen(Trial&)>;

Run overBusThatSays(const std::string& words) {
  return [words](Trial& trial) { return overBus(trial, FalseBus(words).address()); };
}

Run overStoreThatSays(const std::string& reply) {
  return [reply](Trial& trial) {
    const PrivateBus bus(PrivateBus::Services::none);
    const BusPeer store(bus.address(), storeName, {{"Lookup", reply}});
    return overBus(trial, bus.address());
  };
}

// A row whose buses do not know the camera.
Row unknown(std::string_view name, std::string_view fault, Run run) {
  return {name,
          fault,
          std::move(run),
          {"ready", "Something went wrong while fetching the permission status", "1=granted camera=not_determined"}};
}

}  // namespace

std::vector<Row> busRows() {
  const std::string granting = "(@a{sas} {'com.example.reader': ['yes']}, <";
  return {
      {"sound-store",
       "nothing: the store grants the camera",
       overStoreThatSays(granting + "0>)"),
       {"ready", "", "1=granted camera=granted"}},
      {"no-bus",
       "there is no message bus",
       [](Trial& trial) { return overBus(trial, "unix:path=/nonexistent/bus"); },
       {"ready", "", "1=granted camera=not_determined"}},
      unknown("silent-bus", "the bus takes connections and says nothing", overBusThatSays("")),
      unknown("babbling-bus", "the bus says 100 KB of nonsense", overBusThatSays(std::string(100'000, '\xff'))),
      unknown("silent-store", "the permission store gives no answer", overStoreThatSays("")),
      unknown("lying-store", "the permission store answers with other types",
              overStoreThatSays("({'com.example.reader': 'yes'}, <0>)")),
      unknown("huge-store", "the permission store answers with 5 MB",
              overStoreThatSays(granting + "'" + std::string(5'000'000, 'x') + "'>)")),
  };
}

}  // namespace quillon::test
