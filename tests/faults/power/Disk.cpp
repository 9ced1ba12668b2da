#include "tests/faults/power/Disk.h"

#include <algorithm>

#include "tests/support/TemporaryFolder.h"

namespace quillon::test {

void carryOut(const Disk::Change& change, std::string& content) {
  if (change.isSize) {
    content.resize(change.at);
    return;
  }
  content.resize(std::max<std::size_t>(content.size(), change.at + change.bytes.size()));
  content.replace(change.at, change.bytes.size(), change.bytes);
}

void carryOut(const Disk::Naming& naming, std::map<std::string, std::uint64_t>& names) {
  if (!naming.noLonger.empty()) names.erase(naming.noLonger);
  if (naming.file == 0) {
    names.erase(naming.name);
  } else {
    names[naming.name] = naming.file;
  }
}

Disk::Disk(const std::filesystem::path& folder) {
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    const auto inode = record::inodeOf(entry.path().c_str());
    files_[inode].safe = fileBytes(entry.path());
    safeNames_[entry.path().filename()] = inode;
  }
}

void Disk::apply(const DiskCall& call) {
  using Kind = DiskCall::Kind;
  switch (call.kind) {
    case Kind::create:
      files_[call.file] = {};
      pendingNames_.push_back({call.name, call.file});
      break;
    case Kind::link:
      pendingNames_.push_back({call.name, call.file});
      break;
    case Kind::rename:
      pendingNames_.push_back({call.name, call.file, call.before});
      break;
    case Kind::remove:
      pendingNames_.push_back({call.name, 0});
      break;
    case Kind::write:
      files_[call.file].pending.push_back({false, call.at, call.bytes});
      break;
    case Kind::resize:
      files_[call.file].pending.push_back({true, call.at, {}});
      break;
    case Kind::syncFile: {
      auto& file = files_[call.file];
      for (const auto& change : file.pending) carryOut(change, file.safe);
      file.pending.clear();
      break;
    }
    case Kind::syncFolder:
      for (const auto& naming : pendingNames_) carryOut(naming, safeNames_);
      pendingNames_.clear();
      break;
    case Kind::mark:
      break;
  }
}

}  // namespace quillon::test
