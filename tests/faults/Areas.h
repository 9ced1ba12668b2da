// The parts of the surroundings that faults come from, each with its rows in a file of its own.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "tests/faults/Row.h"

namespace quillon::test {

std::vector<Row> fileRows();
std::vector<Row> storeRows();
std::vector<Row> sweepRows();
std::vector<Row> processRows();
std::vector<Row> hostRows();
std::vector<Row> clockRows();
std::vector<Row> networkRows();
std::vector<Row> busRows();

struct Area {
  std::string_view name;
  std::vector<Row> (*rows)();
};

inline constexpr Area areas[] = {
    {"Files", fileRows}, {"Store", storeRows}, {"Sweep", sweepRows},     {"Process", processRows},
    {"Host", hostRows},  {"Clock", clockRows}, {"Network", networkRows}, {"Bus", busRows},
};

}  // namespace quillon::test
