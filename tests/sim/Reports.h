// What the model is told of the processes.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "tests/sim/Plan.h"

namespace quillon::sim {

// What a process was set up with, as far as it decides which document is in force.
struct SessionView {
  std::string application = "a";
  std::string channel = "live";
  std::optional<std::string> place;
  std::optional<int> bundled;  // version
  std::optional<SignalUse> signals;
};

// What one process answers at one moment.
struct Answers {
  bool isQuiet = false;  // nothing is under way
  bool isReady = false;
  std::map<int, std::string> get;
  std::map<int, bool> isAllowed;
  std::map<int, bool> isDecided;
  bool isBannerDue = false;  // as it is explained
};

// What an act may change in the store before it returns.
enum class Effect { nothing, setUp, decision, answer, save, defaults, removal, bannerTest };

struct ActReport {
  int owner = 0;
  Effect effect = Effect::nothing;
  std::map<int, std::string> chosen = {};  // by the user, where it is about single purposes
  bool accepts = false;                    // for an answer
  std::optional<bool> result = {};         // what the call answered, where it does
  bool wasDisturbed = false;               // an update failed, or the process ended, within the call
};

}  // namespace quillon::sim
