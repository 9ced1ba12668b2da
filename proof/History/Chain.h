// The chain of a history: every entry holds the hash of the one before it.
#pragma once

#include <boost/json/object.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "proof/Check/Findings.h"

namespace quillon::proof {

using HistoryEntries = std::vector<boost::json::object>;  // oldest first

// What the hash is of: the entry without its number, which is its place, its upload, which changes later, and what is
// made of the hashes.
[[nodiscard]] boost::json::object hashedPart(const boost::json::object& entry);
[[nodiscard]] std::string entryHash(const boost::json::object& entry);

// "entry 12".
[[nodiscard]] std::string nameOf(const boost::json::object& entry);

struct ChainState {
  std::optional<std::string> head;
  bool isHeadKnown = true;   // false for entries alone, of which newer ones may be missing
  std::int64_t damaged = 0;  // entries that were left out
};

// Tells which entry was changed, removed, inserted or moved.
void checkChain(const HistoryEntries& entries, const ChainState& state, Findings& findings);

}  // namespace quillon::proof
