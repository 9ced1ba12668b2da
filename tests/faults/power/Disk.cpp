#include "tests/faults/power/Disk.h"

#include <algorithm>
#include <set>
#include <utility>

#include "tests/support/TemporaryFolder.h"

namespace quillon::test {
namespace {

using Names = std::map<std::string, std::uint64_t>;
using Subset = std::vector<bool>;  // of the parts, in order

void carryOut(const Disk::Change& change, std::string& content) {
  if (change.isSize) {
    content.resize(change.at);
    return;
  }
  content.resize(std::max<std::size_t>(content.size(), change.at + change.bytes.size()));
  content.replace(change.at, change.bytes.size(), change.bytes);
}

void carryOut(const Disk::Naming& naming, Names& names) {
  if (!naming.noLonger.empty()) names.erase(naming.noLonger);
  if (naming.file == 0) {
    names.erase(naming.name);
  } else {
    names[naming.name] = naming.file;
  }
}

constexpr std::size_t fewParts = 6;

// The empty subset is first, the full one second.
std::vector<Subset> subsets(std::size_t parts, std::size_t atRandom, std::mt19937& random) {
  std::vector<Subset> chosen{Subset(parts, false), Subset(parts, true)};
  if (parts <= fewParts) {
    for (std::size_t bits = 1; bits + 1 < (std::size_t{1} << parts); ++bits) {
      Subset& subset = chosen.emplace_back(parts, false);
      for (std::size_t i = 0; i < parts; ++i) subset[i] = (bits >> i & 1) != 0;
    }
    return chosen;
  }
  for (std::size_t i = 0; i < parts; ++i) {
    chosen.emplace_back(parts, false)[i] = true;
    chosen.emplace_back(parts, true)[i] = false;
    std::fill_n(chosen.emplace_back(parts, false).begin(), i + 1, true);
  }
  for (std::size_t n = 0; n < atRandom; ++n) {
    Subset& subset = chosen.emplace_back(parts, false);
    for (std::size_t i = 0; i < parts; ++i) subset[i] = (random() & 1) != 0;
  }
  return chosen;
}

// Splits each write at sector boundaries.
std::vector<Disk::Change> torn(const std::vector<Disk::Change>& changes, std::uint64_t sectorBytes) {
  std::vector<Disk::Change> parts;
  for (const auto& change : changes) {
    if (change.isSize) {
      parts.push_back(change);
      continue;
    }
    for (std::uint64_t done = 0; done < change.bytes.size();) {
      const auto at = change.at + done;
      const auto length = std::min<std::uint64_t>(sectorBytes - at % sectorBytes, change.bytes.size() - done);
      parts.push_back({false, at, change.bytes.substr(done, length)});
      done += length;
    }
  }
  return parts;
}

std::vector<std::string> contents(const Disk::File& file, std::size_t atRandom, std::mt19937& random) {
  if (file.pending.empty()) return {file.safe};
  std::string last = file.safe;
  for (const auto& change : file.pending) carryOut(change, last);
  std::vector<std::string> chosen{file.safe, last};
  std::set<std::string> known(chosen.begin(), chosen.end());
  const auto add = [&](std::string content) {
    if (known.insert(content).second) chosen.push_back(std::move(content));
  };
  std::size_t parts = 0;
  for (const auto sectorBytes : {std::uint64_t{1} << 40, std::uint64_t{4096}, std::uint64_t{512}}) {
    const auto changes = torn(file.pending, sectorBytes);
    if (changes.size() == parts) continue;  // coarser sectors split nothing
    parts = changes.size();
    for (const auto& subset : subsets(parts, atRandom, random)) {
      std::string content = file.safe;
      for (std::size_t i = 0; i < parts; ++i) {
        if (subset[i]) carryOut(changes[i], content);
      }
      for (const auto size : {file.safe.size(), last.size()}) {
        if (content.size() == size) continue;
        std::string otherSize = content;
        otherSize.resize(size);
        add(std::move(otherSize));
      }
      add(std::move(content));
    }
  }
  return chosen;
}

std::vector<Names> namings(const Disk& disk, std::size_t atRandom, std::mt19937& random) {
  std::vector<Names> chosen;
  const auto& pending = disk.pendingNames();
  for (const auto& subset : subsets(pending.size(), atRandom, random)) {
    Names names = disk.safeNames();
    for (std::size_t i = 0; i < pending.size(); ++i) {
      if (subset[i]) carryOut(pending[i], names);
    }
    if (std::ranges::find(chosen, names) == chosen.end() || chosen.size() < 2) chosen.push_back(std::move(names));
  }
  return chosen;
}

}  // namespace

Disk::Disk(const std::filesystem::path& folder) {
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    const auto inode = inodeOf(entry.path().c_str());
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

void forEachState(const Disk& disk, std::size_t combinations, std::mt19937& random,
                  const std::function<void(const DiskState& state)>& visit) {
  const auto names = namings(disk, combinations, random);
  std::map<std::uint64_t, std::vector<std::string>> choices;
  std::size_t product = names.size();
  for (const auto& [inode, file] : disk.files()) {
    const auto leads = [number = inode](const auto& entry) { return entry.second == number; };
    if (std::ranges::none_of(names, [&](const Names& some) { return std::ranges::any_of(some, leads); })) continue;
    auto& chosen = choices[inode] = contents(file, combinations, random);
    product = std::min(product * chosen.size(), std::size_t{1} << 32);
  }
  const auto build = [&](const Names& naming, const auto& choiceOf) {
    DiskState state;
    for (const auto& [name, inode] : naming) {
      const auto& chosen = choices.at(inode);
      state[name] = chosen[choiceOf(inode, chosen.size())];
    }
    visit(state);
  };

  if (product <= combinations) {
    for (const auto& naming : names) {
      std::map<std::uint64_t, std::size_t> digits;
      for (bool more = true; more;) {
        build(naming, [&](auto inode, auto) { return digits[inode]; });
        more = false;
        for (const auto& [inode, chosen] : choices) {
          if (++digits[inode] < chosen.size()) {
            more = true;
            break;
          }
          digits[inode] = 0;
        }
      }
    }
    return;
  }
  // None and all of the others.
  for (const std::size_t extreme : {0, 1}) {
    const auto others = [&](auto, std::size_t count) { return std::min(extreme, count - 1); };
    for (const auto& naming : names) build(naming, others);
    for (const auto& [changed, chosen] : choices) {
      for (std::size_t choice = 2; choice < chosen.size(); ++choice) {
        for (const std::size_t naming : {0, 1}) {
          build(names[std::min(naming, names.size() - 1)],
                [&](auto inode, std::size_t count) { return inode == changed ? choice : others(inode, count); });
        }
      }
    }
  }
  for (std::size_t n = 0; n < combinations; ++n) {
    build(names[random() % names.size()], [&](auto, std::size_t count) { return random() % count; });
  }
}

}  // namespace quillon::test
