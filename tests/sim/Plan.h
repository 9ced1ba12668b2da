// What happens in a world, in which order: all that a seed decides beforehand.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillon::sim {

enum class Act {
  setUp,
  close,
  restart,
  kill,
  decide,
  decideOnPermission,
  answer,
  removeConsents,
  askBannerDue,
  presentBanner,
  tapBanner,
  presentPreferences,
  tapPreferences,
  check,
  upload,
  ask,
  gate,
  hold,
  pass,
  jumpClock,
  network,
  tracking,
  permission,
  language,
  publish,
  failRequest,
  failStore,
  failFile,
  signal,  // of those that the user gives the device
  tamper,  // writes a consent into the store past the SDK: no plan has it, but those that show that it is found
};
inline constexpr std::size_t actCount = static_cast<std::size_t>(Act::tamper) + 1;
[[nodiscard]] const char* nameOf(Act act);

// One act. The numbers say which, as far as the act has variants; each takes what it needs of them, so that a step
// means the same whatever steps were left out before it.
struct Step {
  Act act = Act::pass;
  unsigned process = 0;
  unsigned what = 0;
  unsigned how = 0;
  // Which jobs run after it, and in which order; 0 for all of them, first come first served.
  std::uint64_t order = 0;
};

// How the application honours privacy signals.
struct SignalUse {
  bool isGiven = false;                      // by the application itself
  std::optional<std::vector<int>> purposes;  // that it names, rather than the documents
};

struct Plan {
  std::uint64_t seed = 0;
  unsigned processes = 1;
  std::int64_t checkInterval = 1800;  // seconds
  bool hasLanguageFiles = false;      // a document for each language, rather than one for all
  bool hasSummerTime = false;         // else the device is in UTC
  bool isVerbose = false;             // the SDK logs all that it has to say
  std::optional<SignalUse> signals;   // none is honoured without; the same in all processes
  std::vector<Step> steps;
};

// From this seed on worlds know privacy signals. Those below mean what they meant before.
inline constexpr std::uint64_t firstSeedWithSignals = 2'000'000'000;

// How a set-up of those numbers honours them, if it does: a process that is alone may change its mind.
[[nodiscard]] std::optional<SignalUse> signalsOf(const Plan& plan, unsigned how);

[[nodiscard]] Plan makePlan(std::uint64_t seed, std::size_t steps);

}  // namespace quillon::sim
