// A model of a folder on a disk for power cuts: durable content, and changes in flight.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "tests/faults/power/CallRecord.h"

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

// Applies a change to a content.
void carryOut(const Disk::Change& change, std::string& content);
void carryOut(const Disk::Naming& naming, std::map<std::string, std::uint64_t>& names);

}  // namespace quillon::test
