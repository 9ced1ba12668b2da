// The hash chain through the history. Every entry contains the hash of its predecessor, so a changed, removed, inserted
// or moved entry is detected.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/KeyValueSuite.h"
#include "quillon/DecisionHistory.h"

namespace quillon {

// The value in place of a hash in the first entry of a chain.
namespace chain_start {
inline constexpr std::string_view first = "first";          // there was no history
inline constexpr std::string_view removed = "removed";      // an earlier history was removed
inline constexpr std::string_view unchained = "unchained";  // earlier entries were written before chains
inline constexpr std::string_view lost = "lost";            // damage: earlier entries are unknown
}  // namespace chain_start

// The only journal record left by a removal of all decisions.
inline constexpr std::string_view removalRecord = R"({"removed":true})";

// The hash of an entry: SHA-256 of its journal text, which is its canonical form (RFC 8785).
[[nodiscard]] std::string entryHash(std::string_view journalText);

struct ChainedTexts {
  std::vector<std::string> texts;
  std::string head;  // hash of the last one
};

// The journal texts of decisions that follow `previous`, a hash or a start; not empty.
[[nodiscard]] ChainedTexts chained(const std::vector<Decision>& decisions, std::string previous);

// The value for the first chained entry, given the newest record.
[[nodiscard]] std::string chainStart(const JournalPage& newest, bool wereEntriesLost);

// The stored state that a page of the history is verified against.
struct ChainState {
  std::string head;                          // the stored hash of the newest entry; empty without one
  std::optional<std::int64_t> newestNumber;  // nullopt: no record
  bool isFirstPage = false;                  // `head` belongs to its first entry
};

// The entries of a page requested with one record more than `count`, each verified against the one before it.
[[nodiscard]] HistoryPage verifiedHistory(JournalPage page, std::size_t count, const ChainState& state);

}  // namespace quillon
