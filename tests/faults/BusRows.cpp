// The message buses, where the device's permissions are asked for.
#include <stdlib.h>

#include "platform/linux/PermissionSources/LinuxPermissionSources.h"
#include "tests/faults/Areas.h"
#include "tests/platform/FalseBus.h"
#include "tests/platform/PrivateBus.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

using Stopwatch = std::chrono::steady_clock;

constexpr const char* storeName = "org.freedesktop.impl.portal.PermissionStore";

// A device whose buses are at that address: it starts, is answered and asked for its camera. Nothing of the buses may
// hold any of it up for long, and nothing but the word of a sound store grants the camera.
Seen overBus(Trial& trial, const std::string& address) {
  ::setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
  ::setenv("DBUS_SYSTEM_BUS_ADDRESS", address.c_str(), 1);
  World world;
  world.amend = [](Platform& platform) {
    platform.permissions = std::make_shared<LinuxPermissionSources>("com.example.reader");
  };
  const auto begin = Stopwatch::now();
  world.start();
  const auto status = world.sdk->getStatus();
  trial.expect(world.sdk->acceptOrReject(true).get(), "the answer is not acknowledged");
  const auto camera = world.sdk->checkConsentBy(VantariKey::cameraUsageDescription).get();
  trial.expect(world.sdk->get(VantariKey::cameraUsageDescription) == camera, "get() and checkConsentBy() disagree");
  world.sdk.reset();
  world.platform = {};
  trial.expect(Stopwatch::now() - begin < std::chrono::seconds(20), "a start, an answer and leaving took too long");
  const std::string log = world.log();
  world.amend = {};
  world.start();
  return {.status = status == SDKStatus::ready ? "ready" : "unavailable",
          .log = log,
          .stored = "1=" + world.text("1").value_or("nothing") + " camera=" + std::string(rawValue(camera))};
}

Seen overStoreThatSays(Trial& trial, const std::string& reply) {
  const PrivateBus bus(PrivateBus::Services::none);
  const BusPeer store(bus.address(), storeName, {{"Lookup", reply}});
  return overBus(trial, bus.address());
}

}  // namespace

std::vector<Row> busRows() {
  const std::string failed = "Something went wrong while fetching the permission status";
  return {
      {"sound-store",
       "nothing: the store grants the camera",
       {"ready", "", "1=granted camera=granted"},
       [](Trial& trial) { return overStoreThatSays(trial, "(@a{sas} {'com.example.reader': ['yes']}, <0>)"); }},
      {"no-bus",
       "there is no message bus",
       {"ready", "", "1=granted camera=not_determined"},
       [](Trial& trial) { return overBus(trial, "unix:path=/nonexistent/bus"); }},
      {"silent-bus",
       "the bus takes connections and says nothing",
       {"ready", failed, "1=granted camera=not_determined"},
       [](Trial& trial) {
         const FalseBus bus("");
         return overBus(trial, bus.address());
       }},
      {"babbling-bus",
       "the bus says 100 KB of nonsense",
       {"ready", failed, "1=granted camera=not_determined"},
       [](Trial& trial) {
         const FalseBus bus(std::string(100'000, '\xff'));
         return overBus(trial, bus.address());
       }},
      {"silent-store",
       "the permission store gives no answer",
       {"ready", failed, "1=granted camera=not_determined"},
       [](Trial& trial) { return overStoreThatSays(trial, ""); }},
      {"lying-store",
       "the permission store answers with other types",
       {"ready", failed, "1=granted camera=not_determined"},
       [](Trial& trial) { return overStoreThatSays(trial, "({'com.example.reader': 'yes'}, <0>)"); }},
      {"huge-store",
       "the permission store answers with 5 MB",
       {"ready", failed, "1=granted camera=not_determined"},
       [](Trial& trial) {
         return overStoreThatSays(trial,
                                  "(@a{sas} {'com.example.reader': ['yes']}, <'" + std::string(5'000'000, 'x') + "'>)");
       }},
  };
}

}  // namespace quillon::test
