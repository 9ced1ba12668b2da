// The sources of faults, each with its rows in a separate file.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "tests/faults/Row.h"

namespace quillon::test {

std::vector<Row> fileRows();
std::vector<Row> storeRows();
std::vector<Row> sweepRows();
std::vector<Row> powerRows();
std::vector<Row> processRows();
std::vector<Row> hostRows();
std::vector<Row> clockRows();
std::vector<Row> networkRows();
std::vector<Row> answerRows();
std::vector<Row> busRows();

struct Area {
  std::string_view name;
  std::vector<Row> (*rows)();
  // Why the rows are skipped with the thread sanitizer; empty for rows about threads.
  std::string_view withoutThreads = {};
};

inline constexpr Area areas[] = {
    {"Files", fileRows, "one thread works on a file at a time, whatever stands in it"},
    {"Store", storeRows, "as with files"},
    {"Sweep", sweepRows, "a process for each call, and in it one thread works"},
    {"Power", powerRows, "one thread does everything"},
    {"Process", processRows, "the sanitizer does not survive the forks of a process with threads"},
    {"Host", hostRows},
    {"Clock", clockRows, "time changes nothing about threads"},
    {"Network", networkRows},
    {"Answers", answerRows},
    {"Bus", busRows},
};

}  // namespace quillon::test
