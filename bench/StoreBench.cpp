// Storing a consent, compared with other stores on the same disk.
#include <benchmark/benchmark.h>

#include <map>

#include "bench/Device.h"
#include "bench/Expectation.h"
#include "bench/OtherStores.h"

namespace quillon::bench {
namespace {

constexpr int manyChanges = 100;
constexpr int mostKeys = 90'000;  // a store holds at most 100,000

template <int keys>
void recordDecision(benchmark::State& state) {
  Device device(configurationWithPurposes(kStoredKeys));
  device.decide(keys);
  benchmark::DoNotOptimize(device.sdk().get(1));  // opens the store
  bool granted = true;
  for (auto _ : state) {
    granted = !granted;
    if (!device.sdk().set(purpose(7), granted ? ConsentStatus::granted : ConsentStatus::declined)) {
      state.SkipWithError("not stored");
    }
  }
}

// Saves in the preference centre: from the choices to the result shown to the user. The upload that follows ends before
// the next save.
void saveChoices(benchmark::State& state) {
  Device device(configurationWithPurposes(kStoredKeys));
  device.setUp();
  device.decide(kStoredKeys);
  bool granted = true;
  for (auto _ : state) {
    granted = !granted;
    std::map<std::int64_t, bool> choices;
    for (int id = 1; id <= manyChanges; ++id) choices.emplace(id, granted);
    if (!device.screens().save(choices, {})) state.SkipWithError("not stored");
    state.PauseTiming();
    device.sdk().settled().wait();
    state.ResumeTiming();
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

void writes(benchmark::internal::Benchmark* benchmark) {
  benchmark->Repetitions(15)->ReportAggregatesOnly()->UseRealTime()->MinTime(0.2)->Unit(benchmark::kMicrosecond);
}

BENCHMARK(recordDecision<kStoredKeys>)->Name("decision/sdk")->Apply(writes);
BENCHMARK(recordDecision<mostKeys>)->Name("decision/sdk with 90000 keys")->Apply(writes)->Repetitions(5);
BENCHMARK(saveChoices)->Name("decision/sdk saves 100")->Apply(writes);
BENCHMARK(commitSqlite<1>)->Name("decision/sqlite commit")->Apply(writes);
BENCHMARK(commitSqlite<manyChanges>)->Name("decision/sqlite commit of 100")->Apply(writes);

const bool registered = expectAtMost({"durable decision, against one bare SQLite commit of as many rows",
                                      {"decision/sdk"},
                                      Figure{"decision/sqlite commit"},
                                      1.15}) &&
                        expectAtMost({"processor time of a decision with 90,000 keys, against 300",
                                      {"decision/sdk with 90000 keys", std::string(kProcessorTime)},
                                      Figure{"decision/sdk", std::string(kProcessorTime)},
                                      1.15}) &&
                        expectAtMost({"saving 100 changed purposes, against one bare SQLite commit of one",
                                      {"decision/sdk saves 100"},
                                      Figure{"decision/sqlite commit"},
                                      3}) &&
                        expectAtMost({"saving 100 changed purposes, against one bare SQLite commit of 100",
                                      {"decision/sdk saves 100"},
                                      Figure{"decision/sqlite commit of 100"},
                                      1.5});

}  // namespace
}  // namespace quillon::bench
