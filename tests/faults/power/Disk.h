// A folder on a disk, as far as a power cut is concerned: what is safe, and what is still under way.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "tests/faults/power/CallRecord.h"

namespace quillon::test {

// The files that a start finds, by name.
using DiskState = std::map<std::string, std::string>;

// A disk keeps nothing but what was synced: content and size of a file by a sync of the file, names by a sync of the
// folder. Of what is under way any part may have reached it, in any order; a rename does so as a whole.
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
  // What a name leads to, and with it what another one no longer does.
  struct Naming {
    std::string name;
    std::uint64_t file;  // 0: nothing
    std::string noLonger = {};
  };

  // What lies there is safe.
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

// A change carried out on a content.
void carryOut(const Disk::Change& change, std::string& content);
void carryOut(const Disk::Naming& naming, std::map<std::string, std::uint64_t>& names);

}  // namespace quillon::test
