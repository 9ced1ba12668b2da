// The hash chain of a history: every entry holds the hash of the one before it.
#pragma once

#include <boost/json/object.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "proof/Check/Findings.h"

namespace quillon::proof {

using HistoryEntries = std::vector<boost::json::object>;  // oldest first

// The hashed members of an entry: all but its number, which is its position, its upload state, which changes later, and
// the members derived from hashes.
[[nodiscard]] boost::json::object hashedPart(const boost::json::object& entry);
[[nodiscard]] std::string entryHash(const boost::json::object& entry);

// "entry 12".
[[nodiscard]] std::string nameOf(const boost::json::object& entry);

struct ChainState {
  std::optional<std::string> head;
  bool isHeadKnown = true;   // false for a bare list of entries, whose newest may be missing
  std::int64_t damaged = 0;  // number of entries omitted because they were damaged
};

// Reports entries that were changed, removed, inserted or moved.
void checkChain(const HistoryEntries& entries, const ChainState& state, Findings& findings);

}  // namespace quillon::proof
