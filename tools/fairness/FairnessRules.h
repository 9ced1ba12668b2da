// The fairness rules. Each is named after what it expects; their names for users are in Fairness.cpp.
#pragma once

#include "core/Configuration/ConfiguredTexts.h"
#include "tools/validate/Finding.h"

namespace quillon::tools {

// BannerFairness.cpp
void europeIsAskedBefore(const MainConfiguration& configuration, const Report& report);
void refusingSaysSo(const MainConfiguration& configuration, const Report& report);
void answersAreAlike(const MainConfiguration& configuration, const Report& report);
void nothingButAnswersConsents(const MainConfiguration& configuration, const Report& report);
void wordsDoNotPush(const MainConfiguration& configuration, const Report& report);
void changingIsOneStepAway(const MainConfiguration& configuration, const Report& report);
void refusalsLast(const MainConfiguration& configuration, const Report& report);
void noticeIsOneStepAway(const MainConfiguration& configuration, const Report& report);
void choicesAreVisible(const MainConfiguration& configuration, const Report& report);

// PurposeFairness.cpp
void nothingIsChosenBefore(const MainConfiguration& configuration, const Report& report);
void essentialIsEssential(const MainConfiguration& configuration, const Report& report);
void purposesAreExplained(const MainConfiguration& configuration, const Report& report);

}  // namespace quillon::tools
