#include <gtest/gtest.h>

#include "tests/sim/KeptSeeds.h"
#include "tests/sim/Shrinker.h"
#include "tests/sim/World.h"

namespace quillon::sim {
namespace {

constexpr std::size_t steps = 60;

TEST(SimTest, SameSeedLeavesTheSameTrail) {
  for (std::uint64_t seed = 1; seed <= 8; ++seed) {
    const Plan plan = makePlan(seed, steps);
    const Outcome first = live(plan, Keep::trail);
    EXPECT_EQ(first.trail, live(plan, Keep::trail).trail) << "seed " << seed;
    EXPECT_GT(first.trail.size(), steps * 10);
  }
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
