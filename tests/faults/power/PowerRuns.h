// Runs of an application in the midst of which the power may go.
#pragma once

#include <filesystem>
#include <span>
#include <string_view>

#include "tests/faults/power/PowerDevice.h"

namespace quillon::test {

struct PowerRun {
  std::string_view name;  // for --only
  std::string_view what;
  // Before it, with everything safe on the disk.
  void (*prepare)(const std::filesystem::path& data);
  // The run, told to the chronicle.
  void (*perform)(const std::filesystem::path& data, Chronicle& chronicle);
  bool isDamaged = false;  // the store, when the run begins: it has to say so, and nothing that was lost is granted
};

std::span<const PowerRun> powerRuns();

}  // namespace quillon::test
