// The events of a world in order: everything that its seed determines in advance.
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
  signal,  // the device's signal, set by the user
  tamper,  // writes a consent to the store, bypassing the SDK; only in plans that test its detection
};
inline constexpr std::size_t actCount = static_cast<std::size_t>(Act::tamper) + 1;
[[nodiscard]] const char* nameOf(Act act);

// One act. `what` and `how` select a variant; each act uses them independently of earlier steps, so a step keeps its
// meaning when other steps are removed.
struct Step {
  Act act = Act::pass;
  unsigned process = 0;
  unsigned what = 0;
  unsigned how = 0;
  // Determines which jobs run afterwards, in which order; 0: all, in FIFO order.
  std::uint64_t order = 0;
};

// The application's handling of privacy signals.
struct SignalUse {
  bool isGiven = false;                      // the application itself gives the signal
  std::optional<std::vector<int>> purposes;  // purposes named by the application, overriding the documents'
};

struct Plan {
  std::uint64_t seed = 0;
  unsigned processes = 1;
  std::int64_t checkInterval = 1800;  // seconds
  bool hasLanguageFiles = false;      // one document per language instead of one for all
  bool hasSummerTime = false;         // otherwise the device is in UTC
  bool isVerbose = false;             // full SDK logging
  std::optional<SignalUse> signals;   // no signal is honoured if empty; the same in all processes
  std::vector<Step> steps;
};

// Seeds from here on use privacy signals; smaller seeds keep their earlier meaning.
inline constexpr std::uint64_t firstSeedWithSignals = 2'000'000'000;

// How a set-up with this `how` honours signals, if at all; a single process may change it from one set-up to the next.
[[nodiscard]] std::optional<SignalUse> signalsOf(const Plan& plan, unsigned how);

[[nodiscard]] Plan makePlan(std::uint64_t seed, std::size_t steps);

}  // namespace quillon::sim
