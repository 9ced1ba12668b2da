// Does harm to the surroundings of the SDK, row by row, and prints what the user sees of it.
#include <CLI/CLI.hpp>
#include <iomanip>
#include <iostream>

#include "tests/faults/Areas.h"
#include "tests/faults/RowProcess.h"

namespace quillon::test {
namespace {

std::string verdict(const Outcome& outcome) {
  if (!outcome.passed()) return "FAILED";
  return outcome.leftOut.empty() ? "ok" : "left out: " + outcome.leftOut;
}

void print(std::string_view area, const Row& row, const Outcome& outcome) {
  std::cout << std::left << std::setw(8) << area << "| " << std::setw(24) << row.name << "| " << row.fault
            << " | status: " << outcome.seen.status << "; log: " << (outcome.seen.log.empty() ? "-" : outcome.seen.log)
            << "; stored: " << outcome.seen.stored << " | " << verdict(outcome) << " (" << outcome.duration.count()
            << " ms)\n";
  for (const auto& failure : outcome.failures) std::cout << "    " << failure << '\n';
  std::cout.flush();
}

int run(bool isShort, bool threads, const std::string& only) {
  int rows = 0;
  int failed = 0;
  int leftOut = 0;
  std::cout << "area    | name                    | what is done | what the user sees | verdict" << std::endl;
  for (const auto& area : areas) {
    if (threads && !area.withoutThreads.empty()) {
      std::cout << std::left << std::setw(8) << area.name << "| left out: " << area.withoutThreads << '\n';
      continue;
    }
    for (const Row& row : area.rows()) {
      if (!only.empty() && row.name != only && area.name != only) continue;
      const auto outcome = carryOut(row, isShort);
      print(area.name, row, outcome);
      ++rows;
      if (!outcome.passed()) ++failed;
      if (!outcome.leftOut.empty()) ++leftOut;
    }
  }
  std::cout << rows << " rows, " << failed << " failed, " << leftOut << " left out\n";
  return rows > leftOut && failed == 0 ? 0 : 1;
}

}  // namespace
}  // namespace quillon::test

int main(int argc, char** argv) {
  CLI::App app("Carries out the table of faults and prints what a user sees of each");
  bool isShort = false;
  bool threads = false;
  std::string only;
  app.add_flag("--short", isShort, "few rounds of each");
  app.add_flag("--threads", threads, "those rows alone that are about threads");
  app.add_option("--only", only, "the row, or the area, of this name alone");
  CLI11_PARSE(app, argc, argv);
  return quillon::test::run(isShort, threads, only);
}
