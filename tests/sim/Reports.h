// What processes report to the model.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "tests/sim/Plan.h"

namespace quillon::sim {

// The options of a set-up that determine the document in force.
struct SessionView {
  std::string application = "a";
  std::string channel = "live";
  std::optional<std::string> place;
  std::optional<int> bundled;  // version
  std::optional<SignalUse> signals;
};

// A process's answers at one moment.
struct Answers {
  bool isQuiet = false;  // the process is idle
  bool isReady = false;
  std::map<int, std::string> get;
  std::map<int, bool> isAllowed;
  std::map<int, bool> isDecided;
  bool isBannerDue = false;  // according to the banner's explanation
};

// The effects that an act may have on the store before it returns.
enum class Effect { nothing, setUp, decision, answer, save, defaults, removal, bannerTest };

struct ActReport {
  int owner = 0;
  Effect effect = Effect::nothing;
  std::map<int, std::string> chosen = {};  // by the user, for decisions on single purposes
  bool accepts = false;                    // for Effect::answer
  std::optional<bool> result = {};         // the call's return value, if any
  bool wasDisturbed = false;               // an update failed, or the process ended, during the call
};

}  // namespace quillon::sim
