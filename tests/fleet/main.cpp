// quillon-fleet: simulates many devices against real servers.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <boost/json.hpp>
#include <cinttypes>
#include <cstdio>
#include <fstream>
#include <map>
#include <string>
#include <utility>

#include "tests/fleet/Fleet.h"

namespace quillon::fleet {
namespace {

constexpr auto kDescription =
    R"(Simulates many devices in this process, on a virtual clock, against real servers, and reports what they asked for.

Each device starts the application within the first half hour and keeps it open. Its user answers the banner in the five
minutes after that, and later changes single purposes. The servers must be empty of earlier uploads. With --uploads the
file in which `serve --db` keeps the uploads is read at the end, and every decision is accounted for; the exit status is
1 when one is missing, different, repeated or unknown. tests/fleet/run.sh starts the servers and this command.)";

struct FleetOptions {
  FleetPlan plan;
  std::string uploads;
  std::string seconds;
  std::string statuses;
  double hours = 24;
  double outageHours = 0;
  double outageAt = 8;
  long interval = 1800;
  long step = 1;
};

std::chrono::seconds inSeconds(double hours) {
  return std::chrono::round<std::chrono::seconds>(std::chrono::duration<double, std::ratio<3600>>(hours));
}

void print(const char* what, const Traffic& traffic, double deviceDays) {
  const auto aDay = [&](std::int64_t count) { return static_cast<double>(count) / deviceDays; };
  std::printf("%-26s", what);
  for (const auto count : traffic.requests) std::printf(" %10" PRId64, count);
  std::printf(" %10" PRId64 " %12.2f %10.0f %10.0f\n", traffic.failed, aDay(traffic.total()), aDay(traffic.bodyBytesUp),
              aDay(traffic.bodyBytesDown));
}

// Traffic of part of the time, and its busiest step.
void printPart(const char* what, const std::map<std::int64_t, Traffic>& traffic, std::chrono::seconds from,
               std::chrono::seconds to, const FleetPlan& plan) {
  Traffic sum;
  std::int64_t peak = 0;
  std::int64_t peakAt = 0;
  for (auto entry = traffic.lower_bound(from.count()); entry != traffic.end() && entry->first < to.count(); ++entry) {
    sum += entry->second;
    if (entry->second.total() > peak) std::tie(peak, peakAt) = std::pair(entry->second.total(), entry->first);
  }
  const auto length = static_cast<double>((to - from).count());
  const auto step = static_cast<double>(plan.step.count());
  print(what, sum, plan.devices * length / 86'400);
  std::printf("%-26s mean %.2f requests a second; in the busiest %.0f s %.2f, at %.2f h\n", "",
              static_cast<double>(sum.total()) / length, step, static_cast<double>(peak) / step,
              static_cast<double>(peakAt) / 3600);
}

void report(const Fleet& fleet) {
  const FleetPlan& plan = fleet.plan();
  const auto traffic = fleet.traffic();
  const auto warm = plan.startsWithin + std::chrono::hours(1);
  std::printf("%-26s %10s %10s %10s %10s %12s %10s %10s\n", "", "config", "location", "upload", "failed", "req/dev/day",
              "up B/d/d", "down B/d/d");
  printPart("all", traffic, std::chrono::seconds(0), plan.duration, plan);
  printPart("starting", traffic, std::chrono::seconds(0), std::min(warm, plan.duration), plan);
  if (plan.outage.count() == 0) {
    if (warm < plan.duration) printPart("running", traffic, warm, plan.duration, plan);
    return;
  }
  const auto end = plan.outageAt + plan.outage;
  const auto recovered = end + std::chrono::seconds(plan.options.consentsCheckInterval.count());
  if (warm < plan.outageAt) printPart("running", traffic, warm, plan.outageAt, plan);
  printPart("outage", traffic, plan.outageAt, end, plan);
  printPart("recovery, one interval", traffic, end, recovered, plan);
  if (recovered < plan.duration) printPart("after it", traffic, recovered, plan.duration, plan);
}

bool writeSeconds(const Fleet& fleet, const std::string& file) {
  std::ofstream out(file);
  out << "second,configuration,location,upload,failed\n";
  for (const auto& [second, traffic] : fleet.traffic()) {
    out << second << ',' << traffic.requests[Traffic::configuration] << ',' << traffic.requests[Traffic::location]
        << ',' << traffic.requests[Traffic::upload] << ',' << traffic.failed << '\n';
  }
  return out.flush().good();
}

bool writeStatuses(const Fleet& fleet, const std::string& file) {
  std::ofstream out(file);
  for (const auto& device : fleet.devices()) {
    boost::json::object purposes;
    for (const auto& [purpose, status] : device->statuses()) {
      purposes[std::to_string(purpose)] = std::string(rawValue(status));
    }
    out << boost::json::serialize(
               boost::json::object{{"subject", device->subject()}, {"purposes", std::move(purposes)}})
        << '\n';
  }
  return out.flush().good();
}

int fail(const std::string& message) {
  std::fprintf(stderr, "quillon-fleet: %s\n", message.c_str());
  return 1;
}

int run(FleetOptions options) {
  FleetPlan& plan = options.plan;
  plan.duration = inSeconds(options.hours);
  plan.step = std::chrono::seconds(options.step);
  plan.outage = inSeconds(options.outageHours);
  plan.outageAt = inSeconds(options.outageAt);
  plan.options.consentsCheckInterval = options.interval;
  if (plan.outage.count() > 0 && plan.outageAt + plan.outage > plan.duration) return fail("the outage has no end");

  Fleet fleet(plan);
  fleet.run();
  report(fleet);
  for (const auto& [file, write] : {std::pair{options.seconds, &writeSeconds}, {options.statuses, &writeStatuses}}) {
    if (!file.empty() && !write(fleet, file)) return fail(file + ": not written");
  }
  if (options.uploads.empty()) return 0;

  const auto store = tools::UploadStore::open(options.uploads, tools::UploadStore::Access::readOnly);
  if (!store) return fail(store.error());
  const auto accounting = account(fleet, **store);
  if (!accounting) return fail(accounting.error());
  std::printf("decisions %" PRId64 ", uploads %" PRId64 "; purposes decided %" PRId64 ", of them missing %" PRId64
              ", different %" PRId64 "; repeated %" PRId64 ", unknown %" PRId64 ", not as chosen %" PRId64 "\n",
              accounting->decisions, accounting->uploads, accounting->purposes, accounting->missing,
              accounting->different, accounting->repeated, accounting->unknown, accounting->contradictions);
  return accounting->isComplete() ? 0 : fail("not every decision is accounted for");
}

void addOptions(CLI::App& app, FleetOptions& options) {
  FleetPlan& plan = options.plan;
  app.add_option("--devices", plan.devices, "How many")->check(CLI::Range(1, 1'000'000))->capture_default_str();
  app.add_option("--hours", options.hours, "Simulated time")->check(CLI::Range(0.1, 24.0 * 366))->capture_default_str();
  app.add_option("--cdn", plan.options.cdnUrl, "Address of the configurations, ending in /")->required();
  app.add_option("--app", plan.options.appUrl, "Address that takes locations and uploads, ending in /")->required();
  app.add_option("--tenant", plan.options.tenantId, "Tenant of the configuration")->required();
  app.add_option("--app-id", plan.options.appId, "Application of the configuration")->required();
  app.add_option("--interval", options.interval, "Seconds between the checks of a device")->capture_default_str();
  app.add_option("--step", options.step, "Seconds that are simulated at once: more is coarser and quicker")
      ->check(CLI::Range(1, 60))
      ->capture_default_str();
  app.add_option("--changes", plan.changes, "How often a user changes one purpose later")
      ->check(CLI::Range(0, 1000))
      ->capture_default_str();
  app.add_option("--outage", options.outageHours, "Hours without servers")->check(CLI::Range(0.0, 24.0 * 366));
  app.add_option("--outage-at", options.outageAt, "The hour at which that begins")->capture_default_str();
  app.add_option("--outage-file", plan.outageFile,
                 "File that exists while the outage lasts, for servers that refuse meanwhile; without it, requests "
                 "end on their way");
  app.add_option("--outage-of", plan.outageOf, "Who sees it: servers, or every device's network, at once")
      ->transform(CLI::CheckedTransformer(std::map<std::string, FleetPlan::OutageOf>{
          {"servers", FleetPlan::OutageOf::servers}, {"network", FleetPlan::OutageOf::network}}));
  app.add_option("--uploads", options.uploads, "File of the server's uploads, to account for every decision");
  app.add_option("--statuses", options.statuses,
                 "File to write, with a line of JSON for each device: what it says at the end about each purpose");
  app.add_option("--seconds", options.seconds, "CSV file to write, with the requests of each simulated second");
}

}  // namespace
}  // namespace quillon::fleet

int main(int argc, char** argv) {
  using namespace quillon::fleet;
  CLI::App app("Simulates many devices against real servers.", "quillon-fleet");
  app.footer(kDescription);
  FleetOptions options;
  addOptions(app, options);
  CLI11_PARSE(app, argc, argv);
  return run(std::move(options));
}
