// One row of the table of faults: something is done to the SDK's surroundings, and the user sees what is promised.
#pragma once

#include <chrono>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillon::test {

// What a user, or the one who reads the log, notices.
struct Seen {
  std::string status;  // of the SDK: "ready", "unavailable"
  // Of a row: a part of an error line of the log; empty when no error may be logged. As seen: the whole log.
  std::string log;
  std::string stored;  // what the device holds afterwards, in words or as "key=value key=value"
};

// One row while it is carried out, in a process of its own.
class Trial {
 public:
  explicit Trial(bool isShort) : isShort_(isShort) {}

  // Few rounds are enough: the table is but one of many tests.
  bool isShort() const { return isShort_; }
  int rounds(int whole, int few) const { return isShort_ ? few : whole; }

  // What else must hold; the row fails otherwise, and goes on. Tells whether it holds.
  bool expect(bool holds, const std::string& claim) {
    if (!holds) failures_.push_back(claim);
    return holds;
  }
  const std::vector<std::string>& failures() const { return failures_; }

  // Something worth knowing for those who read the table.
  void tell(std::string text) { told_ = std::move(text); }
  const std::string& told() const { return told_; }

 private:
  const bool isShort_;
  std::vector<std::string> failures_;
  std::string told_;
};

// Thrown by a row when this machine does not let it do its harm: the row is left out, and the table says why.
struct LeftOut : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct Row {
  std::string_view name;   // for --only
  std::string_view fault;  // what is done
  // Does it and tells what was seen. Runs in a fresh process with one thread, which it may end by dying of the fault
  // only where a child of its own does; an exception fails the row.
  std::function<Seen(Trial&)> run;
  Seen sees{.status = "ready", .log = {}, .stored = "1=granted"};
  std::chrono::seconds limit{150};  // a row that takes longer hangs, and fails
};

}  // namespace quillon::test
