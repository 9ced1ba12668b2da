#include "tools/fairness/Fairness.h"

#include "tools/fairness/FairnessRules.h"
#include "tools/validate/Rules.h"

namespace quillon::tools {
namespace {

constexpr auto unfair = Level::warning;

constexpr Rule rulesOfFairness[] = {
    {"fair-opt-in", unfair, "Where consent is needed, it is asked for before.", europeIsAskedBefore},
    {"fair-refusal", unfair, "Refusing takes one step, on the first layer.", refusingSaysSo},
    {"fair-answers", unfair, "Accepting and refusing have the same weight.", answersAreAlike},
    {"fair-default", unfair, "Nothing is chosen beforehand under opt-in.", nothingIsChosenBefore},
    {"fair-silence", unfair, "Only an answer is a consent.", nothingButAnswersConsents},
    {"fair-withdrawal", unfair, "Changing an answer is as near as giving it.", changingIsOneStepAway},
    {"fair-pause", unfair, "Nobody is asked again within six months of a refusal.", refusalsLast},
    {"fair-notice", unfair, "The privacy notice is one step away.", noticeIsOneStepAway},
    {"fair-languages", unfair, "Nobody is asked in a mixture of languages.", textsHaveAllLanguages},
    {"fair-words", unfair, "No words push users to an answer.", wordsDoNotPush},
    {"fair-sight", unfair, "Choices can be seen, and told apart.", choicesAreVisible},
    {"fair-essential", unfair, "Essential purposes are essential.", essentialIsEssential},
    {"fair-information", unfair, "Users learn what they agree to, and who gets their data.", purposesAreExplained},
};

}  // namespace

std::span<const Rule> fairnessRules() {
  return rulesOfFairness;
}

}  // namespace quillon::tools
