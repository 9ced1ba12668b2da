// Runs the benchmarks and compares medians; fails when a limit is exceeded.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "bench/Expectation.h"
#include "bench/NewProcess.h"

namespace quillon::bench {
namespace {

// The console report, which also stores all medians.
class Medians : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.error_occurred || run.aggregate_name != "median") continue;
      figures_[{run.run_name.function_name, ""}] = run.GetAdjustedRealTime();
      figures_[{run.run_name.function_name, std::string(kProcessorTime)}] = run.GetAdjustedCPUTime();
      for (const auto& [name, counter] : run.counters) figures_[{run.run_name.function_name, name}] = counter.value;
    }
    ConsoleReporter::ReportRuns(runs);
  }

  std::optional<double> at(const Figure& figure) const {
    const auto found = figures_.find({figure.benchmark, figure.counter});
    return found == figures_.end() ? std::nullopt : std::optional(found->second);
  }

 private:
  std::map<std::pair<std::string, std::string>, double> figures_;
};

bool holdsLimits(const Medians& medians) {
  bool holds = true;
  std::printf("\n%-72s %9s %8s\n", "Expectation, of medians", "measured", "limit");
  for (const Expectation& expectation : expectations()) {
    const auto measured = medians.at(expectation.measured);
    const auto reference = expectation.reference ? medians.at(*expectation.reference) : 1.0;
    if (!measured || !reference) continue;  // not selected
    const double value = *measured / *reference;
    const bool within = value <= expectation.limit;
    std::printf("%-72s %9.3f %8.3f%s\n", expectation.claim.c_str(), value, expectation.limit, within ? "" : "  OVER");
    holds = holds && within;
  }
  return holds;
}

}  // namespace
}  // namespace quillon::bench

int main(int argc, char** argv) {
  if (const auto status = quillon::bench::runAsNewProcess(argc, argv)) return *status;
  // Interleaved repetitions, so that a busy moment affects both sides of a comparison.
  std::string interleaving = "--benchmark_enable_random_interleaving=true";
  std::vector<char*> arguments(argv, argv + argc);
  arguments.insert(arguments.begin() + 1, interleaving.data());
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
  quillon::bench::Medians medians;
  benchmark::RunSpecifiedBenchmarks(&medians);
  return quillon::bench::holdsLimits(medians) ? 0 : 1;
}
