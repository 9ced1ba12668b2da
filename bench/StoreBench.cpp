// Reading and storing a consent, compared with other stores on the same disk.
#include <benchmark/benchmark.h>

#include <functional>
#include <map>

#include "bench/AllocationCount.h"
#include "bench/Device.h"
#include "bench/Expectation.h"
#include "bench/OtherStores.h"

namespace quillon::bench {
namespace {

constexpr int manyChanges = 100;

// Queries one purpose after the other, with decisions on all and a configuration in force.
void askAbout(benchmark::State& state, const std::function<void(const ConsentSDK&, std::int64_t id)>& ask) {
  Device device(configurationWithPurposes(kStoredKeys));
  device.setUp();
  device.decide(kStoredKeys);
  std::int64_t id = 0;
  ask(device.sdk(), 1);  // opens the store
  const AllocationCount count;
  for (auto _ : state) ask(device.sdk(), ++id % kStoredKeys + 1);
  state.counters["allocated"] = static_cast<double>(count.peak());
}

void readConsent(benchmark::State& state) {
  askAbout(state, [](const ConsentSDK& sdk, std::int64_t id) { benchmark::DoNotOptimize(sdk.get(id)); });
}

void askWhetherAllowed(benchmark::State& state) {
  askAbout(state, [](const ConsentSDK& sdk, std::int64_t id) { benchmark::DoNotOptimize(sdk.isAllowed(id)); });
}

template <class Store>
void readOther(benchmark::State& state) {
  Store store;
  int id = 0;
  for (auto _ : state) benchmark::DoNotOptimize(store.isGranted(++id % kStoredKeys + 1));
}

void recordDecision(benchmark::State& state) {
  Device device(configurationWithPurposes(kStoredKeys));
  device.decide(kStoredKeys);
  bool granted = true;
  for (auto _ : state) {
    granted = !granted;
    if (!device.sdk().set(purpose(7), granted ? ConsentStatus::granted : ConsentStatus::declined)) {
      state.SkipWithError("not stored");
    }
  }
}

// Saving in the preference centre, from the choices to the result shown to the user.
void saveChoices(benchmark::State& state) {
  Device device(configurationWithPurposes(kStoredKeys));
  device.setUp();
  device.decide(kStoredKeys);
  bool granted = true;
  for (auto _ : state) {
    granted = !granted;
    std::map<std::int64_t, bool> choices;
    for (int id = 1; id <= manyChanges; ++id) choices.emplace(id, granted);
    if (!device.screens().save(choices)) state.SkipWithError("not stored");
    device.sdk().settled().wait();
  }
}

template <int keys>
void commitSqlite(benchmark::State& state) {
  BareSqlite sqlite;
  bool granted = true;
  for (auto _ : state) {
    granted = !granted;
    sqlite.commit(keys, granted ? "granted" : "declined");
  }
}

void reads(benchmark::internal::Benchmark* benchmark) {
  benchmark->Repetitions(9)->ReportAggregatesOnly();
}
void writes(benchmark::internal::Benchmark* benchmark) {
  benchmark->Repetitions(15)->ReportAggregatesOnly()->UseRealTime()->MinTime(0.2)->Unit(benchmark::kMicrosecond);
}

BENCHMARK(readConsent)->Name("read/sdk")->Apply(reads);
BENCHMARK(askWhetherAllowed)->Name("read/sdk is allowed")->Apply(reads);
BENCHMARK(readOther<BareSqlite>)->Name("read/sqlite select")->Apply(reads);
BENCHMARK(readOther<Lmdb>)->Name("read/lmdb get")->Apply(reads);
BENCHMARK(recordDecision)->Name("decision/sdk")->Apply(writes);
BENCHMARK(saveChoices)->Name("decision/sdk saves 100")->Apply(writes);
BENCHMARK(commitSqlite<1>)->Name("decision/sqlite commit")->Apply(writes);
BENCHMARK(commitSqlite<manyChanges>)->Name("decision/sqlite commit of 100")->Apply(writes);

Figure processorTime(const char* benchmark) {
  return {benchmark, std::string(kProcessorTime)};
}

const bool registered =
    expectAtMost({"read of one consent, nanoseconds", processorTime("read/sdk"), {}, 60}) &&
    expectAtMost({"read of one consent, bytes allocated", {"read/sdk", "allocated"}, {}, 0}) &&
    expectAtMost({"whether a purpose is allowed, against a read", processorTime("read/sdk is allowed"),
                  processorTime("read/sdk"), 1.25}) &&
    expectAtMost({"whether a purpose is allowed, bytes allocated", {"read/sdk is allowed", "allocated"}, {}, 0}) &&
    expectAtMost({"read of one consent, against a prepared SQLite SELECT", processorTime("read/sdk"),
                  processorTime("read/sqlite select"), 1.0 / 30}) &&
    expectAtMost(
        {"read of one consent, against LMDB", processorTime("read/sdk"), processorTime("read/lmdb get"), 1.0 / 3}) &&
    expectAtMost({"durable decision, against one bare SQLite commit of as many rows",
                  {"decision/sdk"},
                  Figure{"decision/sqlite commit"},
                  1.15}) &&
    expectAtMost({"saving 100 changed purposes, against one bare SQLite commit of one",
                  {"decision/sdk saves 100"},
                  Figure{"decision/sqlite commit"},
                  3}) &&
    expectAtMost({"saving 100 changed purposes, against one bare SQLite commit of 100",
                  {"decision/sdk saves 100"},
                  Figure{"decision/sqlite commit of 100"},
                  3});

}  // namespace
}  // namespace quillon::bench
