// The growth of a check, a save and a list with the configuration's purposes and the stored decisions.
// `bench/growth.py` draws it.
#include <benchmark/benchmark.h>

#include <map>
#include <string>

#include "bench/Device.h"

namespace quillon::bench {
namespace {

enum class Operation { check, save, list };

void run(Device& device, Operation operation, int purposes, bool granted) {
  switch (operation) {
    case Operation::check:
      device.sdk().checkConsents().get();
      break;
    case Operation::save: {
      std::map<std::int64_t, bool> choices;
      for (int id = 1; id <= purposes; ++id) choices.emplace(id, granted);
      device.screens().save(choices, {});
      device.sdk().settled().wait();
      break;
    }
    case Operation::list:
      benchmark::DoNotOptimize(device.sdk().getPurposeConsents().get());
      break;
  }
}

void measure(benchmark::State& state, Operation operation, int purposes, int decisions) {
  Device device(configurationWithPurposes(purposes));
  device.setUp();
  device.decide(decisions);
  bool granted = true;
  run(device, operation, purposes, granted = false);
  for (auto _ : state) run(device, operation, purposes, granted = !granted);
}

constexpr int kFewPurposes = 10;

const bool registered = [] {
  const std::pair<const char*, Operation> operations[] = {
      {"check", Operation::check}, {"save", Operation::save}, {"list", Operation::list}};
  const auto add = [](const std::string& name, auto function) {
    benchmark::RegisterBenchmark(name.c_str(), function)
        ->Repetitions(5)
        ->ReportAggregatesOnly()
        ->MinTime(0.05)
        ->UseRealTime()
        ->Unit(benchmark::kMicrosecond);
  };
  for (const auto& [name, operation] : operations) {
    for (const int purposes : {10, 30, 100, 300, 1000, 3000, 10'000}) {
      add("growth/" + std::string(name) + " by purposes/" + std::to_string(purposes),
          [operation = operation, purposes](benchmark::State& state) {
            measure(state, operation, purposes, purposes);
          });
    }
    // The store holds at most 100,000 keys.
    for (const int decisions : {1, 10, 100, 1000, 10'000, 90'000}) {
      add("growth/" + std::string(name) + " by decisions/" + std::to_string(decisions),
          [operation = operation, decisions](benchmark::State& state) {
            measure(state, operation, kFewPurposes, decisions);
          });
    }
  }
  return true;
}();

}  // namespace
}  // namespace quillon::bench
