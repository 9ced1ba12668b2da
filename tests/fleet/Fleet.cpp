#include "tests/fleet/Fleet.h"

#include <fstream>
#include <utility>

#include "platform/linux/CurlHttpSession.h"
#include "platform/memory/FixedHostApplication.h"
#include "platform/memory/FixedLocale.h"
#include "platform/memory/NoPermissionSources.h"
#include "platform/memory/SeededRandom.h"
#include "platform/parts/FatalError.h"
#include "platform/parts/FixedAppTracking.h"

namespace quillon::fleet {
namespace {

constexpr WallTime kStart{std::chrono::seconds(1'700'000'000)};

// Ten thousand devices without a network would fill a disk with what they say about it.
class SilentConsole : public Console {
 public:
  void write(std::string_view /*block*/) override {}
  [[noreturn]] void fatal(std::string_view message, std::string_view file) override { abortWithMessage(message, file); }
};

}  // namespace

Fleet::Fleet(FleetPlan plan)
    : plan_(std::move(plan)),
      clock_(std::make_shared<VirtualClock>(kStart)),
      network_(std::make_shared<FleetNetwork>(std::make_shared<CurlHttpSession>(), clock_)) {
  Platform shared;
  shared.console = std::make_shared<SilentConsole>();
  shared.clock = clock_;
  shared.executors = executors_;
  shared.http = network_;
  shared.network = path_;
  shared.locale = std::make_shared<FixedLocale>(std::vector<std::string>{"de-DE"});
  shared.tracking = std::make_shared<FixedAppTracking>();
  shared.permissions = std::make_shared<NoPermissionSources>();
  shared.host = std::make_shared<FixedHostApplication>();
  shared.random = std::make_shared<SeededRandom>();
  shared.vendorUrl = plan_.options.appUrl;
  for (int number = 0; number < plan_.devices; ++number) {
    devices_.push_back(std::make_unique<FleetDevice>(static_cast<std::uint32_t>(number), shared, plan_.options));
  }
}

void Fleet::run() {
  std::multimap<std::chrono::seconds, std::function<void()>> events;
  for (const auto& device : devices_) {
    for (FleetDevice::Event& event : device->plan(plan_.startsWithin, plan_.duration, plan_.changes)) {
      events.emplace(event.at, std::move(event.run));
    }
  }
  if (plan_.outage.count() > 0) {
    events.emplace(plan_.outageAt, [this] { beginOutage(); });
    events.emplace(plan_.outageAt + plan_.outage, [this] { endOutage(); });
  }

  const auto end = plan_.duration + 2 * std::chrono::seconds(plan_.options.consentsCheckInterval.count());
  auto event = events.begin();
  for (std::chrono::seconds now{0}; now < end; now += plan_.step) {
    for (; event != events.end() && event->first < now + plan_.step; ++event) event->second();
    clock_->advance(plan_.step);
    settle();
  }
}

void Fleet::beginOutage() {
  if (plan_.outageFile.empty()) {
    network_->setCut(true);
  } else {
    std::ofstream(plan_.outageFile).put('\n');
  }
  if (plan_.outageOf == FleetPlan::OutageOf::network) path_->set(NetworkStatus::unsatisfied);
}

void Fleet::endOutage() {
  network_->setCut(false);
  if (!plan_.outageFile.empty()) std::filesystem::remove(plan_.outageFile);
  if (plan_.outageOf == FleetPlan::OutageOf::network) path_->set(NetworkStatus::satisfied);
}

void Fleet::settle() {
  do executors_->runUntilIdle();
  while (network_->waitForAnswer());
}

}  // namespace quillon::fleet
