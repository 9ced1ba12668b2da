// The cost of an application start with a cached configuration of 1.5 MB and a used store: the call itself on the main
// thread, and the time until ready, compared with reading and decoding the file.
#include <benchmark/benchmark.h>

#include <chrono>
#include <fstream>

#include "bench/ConfigurationDocument.h"
#include "bench/Device.h"
#include "bench/Expectation.h"
#include "bench/OtherLibraries.h"

namespace quillon::bench {
namespace {

using SteadyClock = std::chrono::steady_clock;

template <bool untilReady>
void setUp(benchmark::State& state) {
  Device device = Device::ticking(largeConfigurationDocument());
  device.setUp();  // downloads
  device.decide(kStoredKeys);
  for (auto _ : state) {
    device.launch();
    const auto begin = SteadyClock::now();
    device.sdk().setup(Device::options());
    if (untilReady) device.sdk().settled().wait();
    state.SetIterationTime(std::chrono::duration<double>(SteadyClock::now() - begin).count());
    if (!untilReady) device.sdk().settled().wait();
    if (device.sdk().getStatus() != SDKStatus::ready) state.SkipWithError("not ready");
  }
}

void readAndDecode(benchmark::State& state) {
  const TemporaryFolder folder;
  const auto file = folder.path() / "document.json";
  std::ofstream(file, std::ios::binary) << largeConfigurationDocument();
  for (auto _ : state) {
    std::ifstream stream(file, std::ios::binary);
    std::string document;
    document.reserve(std::filesystem::file_size(file) + kReadablePadding);
    document.resize(std::filesystem::file_size(file));
    stream.read(document.data(), static_cast<std::streamsize>(document.size()));
    benchmark::DoNotOptimize(decodeWithSimdjson(document));
  }
}

void starts(benchmark::internal::Benchmark* benchmark) {
  benchmark->Repetitions(15)->ReportAggregatesOnly()->MinTime(0.2)->Unit(benchmark::kMicrosecond);
}

BENCHMARK(setUp<false>)->Name("setup/returns")->UseManualTime()->Apply(starts);
BENCHMARK(setUp<true>)->Name("setup/ready from cache")->UseManualTime()->Apply(starts);
BENCHMARK(readAndDecode)->Name("setup/read the file, simdjson")->UseRealTime()->Apply(starts);

const bool registered = expectAtMost({"call of setup, microseconds", {"setup/returns"}, {}, 1000}) &&
                        expectAtMost({"ready from cache, against reading its file and simdjson",
                                      {"setup/ready from cache"},
                                      Figure{"setup/read the file, simdjson"},
                                      2.5});

}  // namespace
}  // namespace quillon::bench
