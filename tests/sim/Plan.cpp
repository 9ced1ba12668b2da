#include "tests/sim/Plan.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "tests/sim/Choices.h"

namespace quillon::sim {
namespace {

struct Kind {
  const char* name;
  unsigned weight;
};

// In the order of Act.
constexpr std::array<Kind, actCount> kinds{{
    {"setUp", 8},          {"close", 1},
    {"restart", 4},        {"kill", 2},
    {"decide", 14},        {"decideOnPermission", 2},
    {"answer", 8},         {"removeConsents", 3},
    {"askBannerDue", 4},   {"presentBanner", 5},
    {"tapBanner", 6},      {"presentPreferences", 3},
    {"tapPreferences", 7}, {"check", 4},
    {"upload", 4},         {"ask", 6},
    {"gate", 3},           {"hold", 3},
    {"pass", 20},          {"jumpClock", 4},
    {"network", 3},        {"tracking", 3},
    {"permission", 3},     {"language", 1},
    {"publish", 9},        {"failRequest", 10},
    {"failStore", 4},      {"failFile", 2},
    {"tamper", 0},
}};

constexpr bool isFault(Act act) {
  return act == Act::failRequest || act == Act::failStore || act == Act::failFile;
}

}  // namespace

const char* nameOf(Act act) {
  return kinds[static_cast<std::size_t>(act)].name;
}

Plan makePlan(std::uint64_t seed, std::size_t steps) {
  Choices choices(seed);
  Plan plan;
  plan.seed = seed;
  plan.processes = choices.oneIn(2) ? 1 : choices.oneIn(3) ? 3 : 2;
  constexpr std::array<std::int64_t, 6> intervals{60, 1800, 1800, 7200, 86'400, 2'592'000};
  plan.checkInterval = intervals[choices.below(intervals.size())];
  plan.hasLanguageFiles = choices.oneIn(2);
  plan.hasSummerTime = choices.oneIn(4);
  plan.isVerbose = choices.oneIn(8);
  // A third of the worlds know no fault, so that nothing is excused in them.
  const bool hasFaults = !choices.oneIn(3);
  const auto weightOf = [&](std::size_t act) {
    return !hasFaults && isFault(static_cast<Act>(act)) ? 0 : kinds[act].weight;
  };
  unsigned sum = 0;
  for (std::size_t act = 0; act < actCount; ++act) sum += weightOf(act);
  for (std::size_t i = 0; i < steps; ++i) {
    auto left = static_cast<unsigned>(choices.below(sum));
    std::size_t act = 0;
    while (left >= weightOf(act)) left -= weightOf(act++);
    constexpr std::size_t variants = 1'000'000;
    Step step{.act = static_cast<Act>(act),
              .process = static_cast<unsigned>(choices.below(plan.processes)),
              .what = static_cast<unsigned>(choices.below(variants)),
              .how = static_cast<unsigned>(choices.below(variants)),
              .order = choices.next() | 1};
    if (i < plan.processes) step = {.act = Act::setUp, .process = static_cast<unsigned>(i), .order = step.order};
    plan.steps.push_back(step);
  }
  return plan;
}

}  // namespace quillon::sim
