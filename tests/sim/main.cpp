// quillon-sim: seeded simulations of the SDK and its environment.
#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "tests/sim/Shrinker.h"
#include "tests/sim/TestWriter.h"
#include "tests/sim/World.h"

namespace quillon::sim {
namespace {

struct Options {
  std::uint64_t from = 1;
  std::uint64_t seeds = 1000;
  std::size_t steps = 60;
  std::size_t failures = 1;
  bool trail = false;
  bool shrink = false;
  bool asTest = false;
};

void report(const Plan& failing, const Options& options) {
  const Plan plan = options.shrink ? shrunk(failing) : failing;
  const Outcome outcome = live(plan, Keep::trail);
  if (options.shrink) std::fputs(outcome.trail.c_str(), stdout);
  if (options.asTest) std::fputs(asTest(plan, outcome.failure.value_or("")).c_str(), stdout);
}

int run(const Options& options) {
  const auto begin = std::chrono::steady_clock::now();
  std::size_t failed = 0;
  std::uint64_t seed = options.from;
  for (; seed < options.from + options.seeds && failed < options.failures; ++seed) {
    const Plan plan = makePlan(seed, options.steps);
    const Outcome outcome = live(plan, options.trail ? Keep::trail : Keep::nothing);
    if (options.trail) std::fputs(outcome.trail.c_str(), stdout);
    if (!outcome.failure) continue;
    ++failed;
    std::printf("seed %llu, step %zu: %s\n", static_cast<unsigned long long>(seed), outcome.steps,
                outcome.failure->c_str());
    if (options.shrink || options.asTest) report(plan, options);
    std::fflush(stdout);
  }
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
  const auto count = static_cast<double>(seed - options.from);
  std::fprintf(stderr, "%.0f seeds, %zu failed, %.0f seeds a second\n", count, failed, count / time.count());
  return failed == 0 ? 0 : 1;
}

}  // namespace
}  // namespace quillon::sim

int main(int argc, char** argv) {
  using namespace quillon::sim;
  // A time zone with daylight-saving time.
  setenv("TZ", "Europe/Berlin", 1);
  CLI::App app("Lets the SDK live through worlds, each of which a seed decides.", "quillon-sim");
  Options options;
  app.add_option("--from", options.from, "The first seed")->capture_default_str();
  app.add_option("--seeds", options.seeds, "How many")->capture_default_str();
  app.add_option("--steps", options.steps, "Steps of each")->capture_default_str();
  app.add_option("--failures", options.failures, "Goes on until so many have failed")->capture_default_str();
  app.add_flag("--trail", options.trail, "Prints what happened");
  app.add_flag("--shrink", options.shrink, "Makes what fails as short as it can and prints what happened");
  app.add_flag("--as-test", options.asTest, "Prints what fails as a test over the test kit, to be pasted");
  CLI11_PARSE(app, argc, argv);
  return run(options);
}
