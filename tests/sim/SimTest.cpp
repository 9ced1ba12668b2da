#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

#include "tests/sim/Documents.h"
#include "tests/sim/KeptSeeds.h"
#include "tests/sim/Shrinker.h"
#include "tests/sim/TestWriter.h"
#include "tests/sim/World.h"

namespace quillon::sim {
namespace {

constexpr std::size_t steps = 60;

bool compiles(const std::string& text, const std::string& messages = "/dev/stderr") {
  const auto file = std::filesystem::temp_directory_path() / ("printed-" + std::to_string(::getpid()) + ".cpp");
  std::ofstream(file) << text;
  const bool isRight = std::system((QUILLON_COMPILE " " + file.string() + " 2>" + messages).c_str()) == 0;
  std::filesystem::remove(file);
  return isRight;
}

TEST(SimTest, SameSeedLeavesTheSameTrail) {
  for (std::uint64_t seed = 1; seed <= 8; ++seed) {
    const Plan plan = makePlan(seed, steps);
    const Outcome first = live(plan, Keep::trail);
    EXPECT_EQ(first.trail, live(plan, Keep::trail).trail) << "seed " << seed;
    EXPECT_GT(first.trail.size(), steps * 10);
  }
}

// Covers all acts, with privacy signals and without.
TEST(SimTest, PrintedTestsCompile) {
  Plan plan = makePlan(firstSeedWithSignals, 0);
  plan.signals = SignalUse{.isGiven = true, .purposes = std::vector<int>{1, 2}};
  plan.processes = 2;
  for (std::size_t act = 0; act < actCount; ++act) {
    constexpr unsigned variants = 30;  // enough for every text of each act
    for (unsigned i = 0; i < variants; ++i) {
      plan.steps.push_back({.act = static_cast<Act>(act), .process = i, .what = i, .how = i * 7, .order = i});
    }
  }
  const std::string text = asTest(plan, "claim 10: an error:\nquoted \"from\" the log \\");
  EXPECT_TRUE(compiles(text)) << text;
  EXPECT_FALSE(compiles("int number = nothing;", "/dev/null")) << "the compiler was not asked";
}

TEST(SimTest, SeedsThatOnceFailedHold) {
  for (const std::uint64_t seed : keptSeeds) {
    const Outcome outcome = live(makePlan(seed, steps), Keep::nothing);
    EXPECT_FALSE(outcome.failure) << "seed " << seed << ": " << *outcome.failure;
  }
}

TEST(SimTest, ConsentThatNobodyGaveIsFoundAndShrunkToItself) {
  Plan plan = makePlan(1, steps);
  plan.steps[steps / 2].act = Act::tamper;
  const Outcome outcome = live(plan, Keep::nothing);
  ASSERT_TRUE(outcome.failure);
  EXPECT_TRUE(outcome.failure->starts_with("claim 1")) << *outcome.failure;
  EXPECT_EQ(outcome.steps, steps / 2 + 1);
  const Plan shortest = shrunk(plan);
  ASSERT_EQ(shortest.steps.size(), 1u);
  EXPECT_EQ(shortest.steps.front().act, Act::tamper);
}

}  // namespace
}  // namespace quillon::sim
