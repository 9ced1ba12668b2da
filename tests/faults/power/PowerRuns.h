// Application runs for power cuts.
#pragma once

#include <filesystem>
#include <span>
#include <string_view>

#include "tests/faults/power/PowerDevice.h"

namespace quillon::test {

struct PowerRun {
  std::string_view name;  // for --only
  std::string_view what;
  // Prepares durable data on the disk.
  void (*prepare)(const std::filesystem::path& data);
  // The run, recorded in the chronicle.
  void (*perform)(const std::filesystem::path& data, Chronicle& chronicle);
  bool isDamaged = false;  // the store is damaged before the run: it must report so, and no lost entry is granted
};

std::span<const PowerRun> powerRuns();

}  // namespace quillon::test
