#include "tests/sim/Plan.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "tests/sim/Choices.h"
#include "tests/sim/Documents.h"

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
    {"signal", 0},         {"tamper", 0},
}};

constexpr bool isFault(Act act) {
  return act == Act::failRequest || act == Act::failStore || act == Act::failFile;
}

// Uses a separate random sequence and replaces other acts, so that older seeds keep their meaning.
void addSignals(Plan& plan, Choices choices) {
  constexpr std::size_t seldom = 8;
  if (choices.oneIn(3)) return;
  plan.signals.emplace();
  plan.signals->isGiven = choices.oneIn(seldom);
  if (choices.oneIn(3)) plan.signals->purposes = anyPurposes(choices);
  for (std::size_t i = plan.processes; i < plan.steps.size(); ++i) {
    if (choices.oneIn(seldom)) plan.steps[i].act = Act::signal;
  }
}

}  // namespace

const char* nameOf(Act act) {
  return kinds[static_cast<std::size_t>(act)].name;
}

std::optional<SignalUse> signalsOf(const Plan& plan, unsigned how) {
  constexpr unsigned others = 384;  // number of variants that `how` encodes otherwise
  constexpr unsigned moods = 8;
  const unsigned mood = plan.processes == 1 ? how / others % moods : 0;
  std::optional<SignalUse> use = plan.signals;
  if (mood == 1) use.reset();
  if (use && (mood == 2 || mood == 3)) use->isGiven = !use->isGiven;
  return use;
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
  // A third of the worlds have no faults, so that the model tolerates nothing there.
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
  if (seed >= firstSeedWithSignals) addSignals(plan, Choices(~seed));
  return plan;
}

}  // namespace quillon::sim
