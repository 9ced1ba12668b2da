// Decoding and encoding a large configuration, beside other JSON libraries that fill the same structures.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include "bench/AllocationCount.h"
#include "bench/ConfigurationDocument.h"
#include "bench/Expectation.h"
#include "bench/NewProcess.h"
#include "bench/OtherLibraries.h"
#include "core/Json/Codec.h"

namespace quillon::bench {
namespace {

const std::string& document() {
  static const std::string text = [] {
    std::string made = largeConfigurationDocument();
    made.reserve(made.size() + kReadablePadding);
    return made;
  }();
  return text;
}

MainConfiguration decodeWithQuillon(std::string_view json) {
  return decode<MainConfiguration>(json).value();
}

template <MainConfiguration (*decoder)(std::string_view)>
void decodeDocument(benchmark::State& state) {
  const std::string& json = document();
  if (!(decoder(json) == decodeWithQuillon(json))) return state.SkipWithError("the records differ");
  for (auto _ : state) {
    MainConfiguration configuration = decoder(json);
    benchmark::DoNotOptimize(configuration);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(json.size()));
}

template <std::string (*encoder)(const MainConfiguration&)>
void encodeDocument(benchmark::State& state) {
  const MainConfiguration configuration = decodeWithQuillon(document());
  if (encoder(configuration) != document()) return state.SkipWithError("the documents differ");
  for (auto _ : state) {
    std::string json = encoder(configuration);
    benchmark::DoNotOptimize(json);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(document().size()));
}

void decodeMemory(benchmark::State& state) {
  const std::string& json = document();
  for (auto _ : state) {
    const AllocationCount count;
    const MainConfiguration configuration = decodeWithQuillon(json);
    state.counters["kept"] = static_cast<double>(count.kept());
    state.counters["peak"] = static_cast<double>(count.peak());
  }
}

void firstDecode(benchmark::State& state, const char* work) {
  std::string file = "/tmp/quillon-bench-XXXXXX";
  const int descriptor = mkstemp(file.data());
  if (descriptor < 0) return state.SkipWithError("no temporary file");
  close(descriptor);
  std::ofstream(file, std::ios::binary) << document();
  for (auto _ : state) state.SetIterationTime(measuredInNewProcess(work, file));
  unlink(file.c_str());
}

template <MainConfiguration (*decoder)(std::string_view)>
double secondsOfDecoding(std::string_view json) {
  const auto begin = std::chrono::steady_clock::now();
  static const MainConfiguration kept = decoder(json);
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

const bool firstWorks = registerFirstWork("quillon", secondsOfDecoding<decodeWithQuillon>) &&
                        registerFirstWork("simdjson", secondsOfDecoding<decodeWithSimdjson>);

constexpr int kRepetitions = 9;

void warm(benchmark::internal::Benchmark* benchmark) {
  benchmark->Unit(benchmark::kMillisecond)->MinTime(0.2)->Repetitions(kRepetitions)->ReportAggregatesOnly();
}
void cold(benchmark::internal::Benchmark* benchmark) {
  benchmark->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(1)->Repetitions(41)->ReportAggregatesOnly();
}

BENCHMARK(decodeDocument<decodeWithQuillon>)->Name("decode/quillon")->Apply(warm);
BENCHMARK(decodeDocument<decodeWithSimdjson>)->Name("decode/simdjson")->Apply(warm);
BENCHMARK(decodeDocument<decodeWithRapidJson>)->Name("decode/rapidjson")->Apply(warm);
BENCHMARK(decodeDocument<decodeWithNlohmann>)->Name("decode/nlohmann")->Apply(warm);
BENCHMARK(encodeDocument<encode<MainConfiguration>>)->Name("encode/quillon")->Apply(warm);
BENCHMARK(encodeDocument<encodeWithRapidJson>)->Name("encode/rapidjson")->Apply(warm);
BENCHMARK(decodeMemory)->Name("decode/memory")->Iterations(1)->Repetitions(3)->ReportAggregatesOnly();
BENCHMARK_CAPTURE(firstDecode, quillon, "quillon")->Name("first decode/quillon")->Apply(cold);
BENCHMARK_CAPTURE(firstDecode, simdjson, "simdjson")->Name("first decode/simdjson")->Apply(cold);

Figure processorTime(std::string benchmark) {
  return {std::move(benchmark), std::string(kProcessorTime)};
}

const bool comparisons = expectAtMost({"decode a configuration, against simdjson On-Demand",
                                       processorTime("decode/quillon"), processorTime("decode/simdjson"), 2.0}) &&
                         expectAtMost({"decode a configuration, against RapidJSON's tree",
                                       processorTime("decode/quillon"), processorTime("decode/rapidjson"), 1.0}) &&
                         expectAtMost({"decode a configuration, against nlohmann's tree",
                                       processorTime("decode/quillon"), processorTime("decode/nlohmann"), 0.25}) &&
                         expectAtMost({"first decode in a new process, against simdjson",
                                       {"first decode/quillon"},
                                       Figure{"first decode/simdjson"},
                                       1.15}) &&
                         expectAtMost({"peak memory of decoding, against the records kept",
                                       {"decode/memory", "peak"},
                                       Figure{"decode/memory", "kept"},
                                       1.6}) &&
                         expectAtMost({"encode a configuration, against RapidJSON's Writer",
                                       processorTime("encode/quillon"), processorTime("encode/rapidjson"), 2.0});

}  // namespace
}  // namespace quillon::bench
