// One row of the table of faults: a fault is injected, and the user sees the promised behaviour.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Effort.h"
#include "tests/support/World.h"

namespace quillon::test {

// What a user or a reader of the log sees.
struct Seen {
  std::string status;  // of the SDK: "ready", "unavailable"
  // In a row: part of an error line of the log; empty when no error may be logged. In a result: the whole log.
  std::string log;
  std::string stored;  // the device's content afterwards, as text or "key=value key=value"
};

// What a user sees at the moment; by default the stored decision on the first purpose.
inline Seen seen(World& world, std::optional<std::string> stored = std::nullopt) {
  const auto status = world.sdk->getStatus();
  return {.status = status == SDKStatus::ready      ? "ready"
                    : status == SDKStatus::fetching ? "fetching"
                                                    : "unavailable",
          .log = world.log(),
          .stored = stored ? *std::move(stored) : "1=" + world.text("1").value_or("nothing")};
}

inline std::filesystem::path storeIn(const std::filesystem::path& data) {
  return data / "quillon-cmp-sdk.sqlite";
}

inline constexpr const char* allAcknowledged = "all that was acknowledged";

// A running row, in its own process.
class Trial {
 public:
  explicit Trial(bool isShort) : isShort_(isShort) {}

  // Runs few rounds, when the table is one of many tests.
  bool isShort() const { return isShort_; }
  int rounds(int whole, int few) const { return isShort_ ? few : whole; }

  // Of a sweep over calls or states, a short trial takes one in so many, and a sanitized one, which costs ten times as
  // much, still fewer: the release has looked at the others.
  int oneIn(int few) const { return !isShort_ ? 1 : isSanitized ? 2 * few : few; }

  // A further claim; the row fails if it does not hold, and continues. Returns whether it holds.
  bool expect(bool holds, const std::string& claim) {
    if (!holds) failures_.push_back(claim);
    return holds;
  }
  const std::vector<std::string>& failures() const { return failures_; }

  // A remark for readers of the table.
  void tell(std::string text) { told_ = std::move(text); }
  const std::string& told() const { return told_; }

 private:
  const bool isShort_;
  std::vector<std::string> failures_;
  std::string told_;
};

// Thrown by a row that cannot inject its fault on this machine: the row is skipped, with the reason.
struct LeftOut : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct Row {
  std::string_view name;   // for --only
  std::string_view fault;  // the injected fault
  // Injects the fault and returns the result. Runs in a new process with one thread; only child processes may die of
  // the fault. An exception fails the row.
  std::function<Seen(Trial&)> run;
  Seen sees{.status = "ready", .log = {}, .stored = "1=granted"};
  std::chrono::seconds limit{150};  // a longer run counts as a hang, and fails
};

// By the sources of faults.
std::vector<Row> storeRows();
std::vector<Row> sweepRows();
std::vector<Row> powerRows();
std::vector<Row> processRows();
std::vector<Row> hostRows();
std::vector<Row> networkRows();

}  // namespace quillon::test
