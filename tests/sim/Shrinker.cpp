#include "tests/sim/Shrinker.h"

#include <algorithm>
#include <string>
#include <utility>

#include "tests/sim/World.h"

namespace quillon::sim {
namespace {

// Compares claim numbers only; the rest of the text, such as process numbers, may change while shrinking.
std::string claimOf(const Outcome& outcome) {
  return outcome.failure ? outcome.failure->substr(0, outcome.failure->find(':')) : std::string();
}

class Search {
 public:
  Search(Plan failing, int lives) : best_(std::move(failing)), lives_(lives) {
    const Outcome outcome = live(best_, Keep::nothing);
    claim_ = claimOf(outcome);
    best_.steps.resize(std::min(best_.steps.size(), outcome.steps));
  }

  Plan run() {
    bool isShorter = true;
    while (isShorter && lives_ > 0) {
      isShorter = false;
      for (std::size_t length = std::max<std::size_t>(best_.steps.size() / 2, 1); length > 0; length /= 2) {
        isShorter = leaveOut(length) || isShorter;
      }
      isShorter = simplify() || isShorter;
    }
    return best_;
  }

 private:
  bool take(Plan candidate) {
    if (--lives_ < 0 || claimOf(live(candidate, Keep::nothing)) != claim_) return false;
    best_ = std::move(candidate);
    return true;
  }

  bool leaveOut(std::size_t length) {
    bool isShorter = false;
    for (std::size_t end = best_.steps.size(); end >= length && end > 0;) {
      Plan candidate = best_;
      const auto first = candidate.steps.begin() + static_cast<std::ptrdiff_t>(end - length);
      candidate.steps.erase(first, first + static_cast<std::ptrdiff_t>(length));
      if (take(std::move(candidate))) isShorter = true;
      end -= std::min(end, length);
    }
    return isShorter;
  }

  bool simplify() {
    bool isSimpler = false;
    const auto attempt = [&](auto change) {
      Plan candidate = best_;
      if (change(candidate)) isSimpler = take(std::move(candidate)) || isSimpler;
    };
    attempt([](Plan& plan) { return std::exchange(plan.processes, 1U) != 1; });
    attempt([](Plan& plan) { return std::exchange(plan.isVerbose, false); });
    attempt([](Plan& plan) { return std::exchange(plan.hasSummerTime, false); });
    attempt([](Plan& plan) { return std::exchange(plan.hasLanguageFiles, false); });
    attempt([](Plan& plan) { return std::exchange(plan.signals, std::nullopt).has_value(); });
    for (std::size_t i = 0; i < best_.steps.size(); ++i) {
      attempt([&](Plan& plan) { return std::exchange(plan.steps[i].order, 0U) != 0; });
      attempt([&](Plan& plan) { return std::exchange(plan.steps[i].process, 0U) != 0; });
      attempt([&](Plan& plan) { return std::exchange(plan.steps[i].how, 0U) != 0; });
      attempt([&](Plan& plan) { return std::exchange(plan.steps[i].what, 0U) != 0; });
    }
    return isSimpler;
  }

  Plan best_;
  int lives_;
  std::string claim_;
};

}  // namespace

Plan shrunk(Plan failing, int lives) {
  return Search(std::move(failing), lives).run();
}

}  // namespace quillon::sim
