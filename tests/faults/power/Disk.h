// A model of a folder on a disk for power cuts: durable content, changes in flight, and the states that may be found.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "tests/faults/SystemCalls.h"

namespace quillon::test {

// The files found at a start, by name.
using DiskState = std::map<std::string, std::string>;

// Only synced changes are durable: a file's content and size by a sync of the file, names by a sync of the folder. Any
// part of the changes in flight may have reached the disk, in any order; renames are atomic.
class Disk {
 public:
  // A write or a new size.
  struct Change {
    bool isSize;
    std::uint64_t at;
    std::string bytes;
  };
  struct File {
    std::string safe;
    std::vector<Change> pending;
  };
  // A name's target, which the previous name loses.
  struct Naming {
    std::string name;
    std::uint64_t file;  // 0: none
    std::string noLonger = {};
  };

  // The existing content is durable.
  explicit Disk(const std::filesystem::path& folder);

  void apply(const DiskCall& call);

  const std::map<std::uint64_t, File>& files() const { return files_; }
  const std::map<std::string, std::uint64_t>& safeNames() const { return safeNames_; }
  const std::vector<Naming>& pendingNames() const { return pendingNames_; }

 private:
  std::map<std::uint64_t, File> files_;
  std::map<std::string, std::uint64_t> safeNames_;
  std::vector<Naming> pendingNames_;
};

// Visits the states that the disk may be in after a power cut now. Of the changes in flight: none, all, each part
// alone, all but each part, each prefix, every subset of few parts, and random subsets. A write counts as one part, and
// as its sectors of 512 or 4096 bytes; a file's size may be the old or the new one. If names and several files are in
// flight, visits every combination up to `combinations`, else each choice with the extremes of the others and that many
// random combinations. A state may be visited more than once.
void forEachState(const Disk& disk, std::size_t combinations, std::mt19937& random,
                  const std::function<void(const DiskState& state)>& visit);

}  // namespace quillon::test
