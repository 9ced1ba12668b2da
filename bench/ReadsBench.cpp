// Reading a consent, compared with other stores on the same disk; by several threads, and while one writes.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <atomic>
#include <ctime>
#include <latch>
#include <thread>
#include <vector>

#include "bench/AllocationCount.h"
#include "bench/Device.h"
#include "bench/Expectation.h"
#include "bench/OtherStores.h"

namespace quillon::bench {
namespace {

// With decisions on all purposes and a configuration in force.
class DecidedDevice {
 public:
  DecidedDevice() : device_(configurationWithPurposes(kStoredKeys)) {
    device_.setUp();
    device_.decide(kStoredKeys);
  }
  ConsentSDK& sdk() { return device_.sdk(); }

 private:
  Device device_;
};

struct Status {
  static auto of(const ConsentSDK& sdk, std::int64_t id) { return sdk.get(id); }
};
struct Permit {
  static auto of(const ConsentSDK& sdk, std::int64_t id) { return sdk.isAllowed(id); }
};

// Queries one purpose after the other.
template <class Question>
void ask(benchmark::State& state) {
  DecidedDevice device;
  std::int64_t id = 0;
  const ConsentSDK& sdk = device.sdk();
  const AllocationCount count;
  for (auto _ : state) benchmark::DoNotOptimize(Question::of(sdk, ++id % kStoredKeys + 1));
  state.counters["allocated"] = static_cast<double>(count.peak());
}

template <class Store>
void readOther(benchmark::State& state) {
  Store store;
  int id = 0;
  for (auto _ : state) benchmark::DoNotOptimize(store.isGranted(++id % kStoredKeys + 1));
}

double processorSeconds() {
  timespec now{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// The number of voluntary context switches of this thread.
long waits() {
  rusage usage{};
  ::getrusage(RUSAGE_THREAD, &usage);
  return usage.ru_nvcsw;
}

// Processor time per read with several concurrent threads, and how often they blocked. Without blocking or slowdown,
// threads read as often as the available processors permit, however busy the machine is.
template <int threads, bool isWritten>
void readTogether(benchmark::State& state) {
  constexpr int reads = 1'000'000;
  DecidedDevice device;
  std::atomic<bool> over = false;
  std::jthread writer;
  if (isWritten) {
    writer = std::jthread([&] {
      for (bool granted = false; !over; granted = !granted) {
        device.sdk().set(purpose(7), granted ? ConsentStatus::granted : ConsentStatus::declined);
      }
    });
  }
  std::atomic<long> waited = 0;
  for (auto _ : state) {
    std::atomic<double> seconds = 0;
    std::latch begin(threads);
    std::vector<std::jthread> readers;
    for (int i = 0; i < threads; ++i) {
      readers.emplace_back([&, id = std::int64_t{i}]() mutable {
        const ConsentSDK& sdk = device.sdk();
        begin.arrive_and_wait();
        const long waitsBefore = waits();
        const double before = processorSeconds();
        for (int read = 0; read < reads; ++read) benchmark::DoNotOptimize(sdk.get(++id % kStoredKeys + 1));
        seconds += processorSeconds() - before;
        waited += waits() - waitsBefore;
      });
    }
    readers.clear();
    state.SetIterationTime(seconds / threads / reads);
  }
  over = true;
  state.counters["waits"] = static_cast<double>(waited);
}

void reads(benchmark::internal::Benchmark* benchmark) {
  benchmark->Repetitions(9)->ReportAggregatesOnly();
}
void readsTogether(benchmark::internal::Benchmark* benchmark) {
  benchmark->Repetitions(9)->Iterations(5)->ReportAggregatesOnly()->UseManualTime();
}

BENCHMARK(ask<Status>)->Name("read/sdk")->Apply(reads);
BENCHMARK(ask<Permit>)->Name("read/sdk is allowed")->Apply(reads);
BENCHMARK(readOther<BareSqlite>)->Name("read/sqlite select")->Apply(reads);
BENCHMARK(readOther<Lmdb>)->Name("read/lmdb get")->Apply(reads);
BENCHMARK((readTogether<1, false>))->Name("read/by 1 thread")->Apply(readsTogether);
BENCHMARK((readTogether<2, false>))->Name("read/by 2 threads")->Apply(readsTogether);
BENCHMARK((readTogether<4, false>))->Name("read/by 4 threads")->Apply(readsTogether);
BENCHMARK((readTogether<1, true>))->Name("read/by 1 thread and a writer")->Apply(readsTogether);
BENCHMARK((readTogether<2, true>))->Name("read/by 2 threads and a writer")->Apply(readsTogether);
BENCHMARK((readTogether<4, true>))->Name("read/by 4 threads and a writer")->Apply(readsTogether);

Figure processorTime(const char* benchmark) {
  return {benchmark, std::string(kProcessorTime)};
}

// The limit at which two threads make 1.9 times the reads of one.
constexpr double mostOfOneThread = 2 / 1.9;

bool expectNoWaiting(const std::string& threads) {
  return expectAtMost({"processor time of a read by " + threads + ", against 1 thread",
                       {"read/by " + threads},
                       Figure{"read/by 1 thread"},
                       mostOfOneThread}) &&
         expectAtMost({"times that " + threads + " waited for another", {"read/by " + threads, "waits"}, {}, 0});
}

const bool registered =
    expectAtMost({"read of one consent, nanoseconds", processorTime("read/sdk"), {}, 15}) &&
    expectAtMost({"read of one consent, bytes allocated", {"read/sdk", "allocated"}, {}, 0}) &&
    expectAtMost(
        {"read of one consent, against LMDB", processorTime("read/sdk"), processorTime("read/lmdb get"), 0.1}) &&
    expectAtMost({"read of one consent, against a prepared SQLite SELECT", processorTime("read/sdk"),
                  processorTime("read/sqlite select"), 0.01}) &&
    expectAtMost({"whether a purpose is allowed, nanoseconds", processorTime("read/sdk is allowed"), {}, 15}) &&
    expectAtMost({"whether a purpose is allowed, against a read", processorTime("read/sdk is allowed"),
                  processorTime("read/sdk"), 1.5}) &&
    expectAtMost({"whether a purpose is allowed, bytes allocated", {"read/sdk is allowed", "allocated"}, {}, 0}) &&
    expectNoWaiting("2 threads") && expectNoWaiting("4 threads") && expectNoWaiting("1 thread and a writer") &&
    expectNoWaiting("2 threads and a writer") && expectNoWaiting("4 threads and a writer");

}  // namespace
}  // namespace quillon::bench
