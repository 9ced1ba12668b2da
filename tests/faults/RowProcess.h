// A row in a process of its own: its death and its hanging are results, not the end of the table.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "tests/faults/Row.h"

namespace quillon::test {

struct Outcome {
  Seen seen;  // the log as the error line that the row is about
  std::vector<std::string> failures;
  std::string leftOut;  // why the row was not carried out; empty when it was
  std::chrono::milliseconds duration{};

  bool passed() const { return failures.empty(); }
};

// Carries the row out. To be called while this process has one thread.
Outcome carryOut(const Row& row, bool isShort);

}  // namespace quillon::test
