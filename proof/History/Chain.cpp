#include "proof/History/Chain.h"

#include <unordered_map>

#include "core/History/DecisionChain.h"
#include "core/Text/Sha256.h"
#include "platform/KeyValueSuite.h"
#include "proof/Json/CanonicalJson.h"
#include "proof/Json/Members.h"

namespace quillon::proof {
namespace {

namespace json = boost::json;

// A history with this many entries may have lost its oldest ones by age.
constexpr std::size_t fewestAfterDropping = maximumJournalRecords - journalRecordsDroppedAtOnce;

class ChainCheck {
 public:
  ChainCheck(const HistoryEntries& entries, const ChainState& state, Findings& findings)
      : entries_(entries), state_(state), findings_(findings) {
    hashes_.reserve(entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
      hashes_.push_back(entryHash(entries[i]));
      placeOf_.emplace(hashes_.back(), i);
    }
  }

  void run() {
    const auto before = findings_.faults();
    for (std::size_t i = 0; i < entries_.size(); ++i) {
      checkForm(i);
      checkLink(i);
    }
    checkHead();
    if (state_.damaged != 0) {
      findings_.fault("history", std::to_string(state_.damaged) + " damaged entries are left out of it");
    }
    if (findings_.faults() == before) findings_.holds("chain", std::to_string(chained_) + " entries follow each other");
    const auto unchained = entries_.size() - chained_;
    if (unchained > 0 && findings_.faults() == before) {
      findings_.note("chain", std::to_string(unchained) + " entries are from before the chain began");
    }
  }

 private:
  [[nodiscard]] bool mayLackOlder() const {
    return entries_.size() + static_cast<std::size_t>(std::max<std::int64_t>(state_.damaged, 0)) >= fewestAfterDropping;
  }

  void fault(std::size_t i, std::string text) { findings_.fault(nameOf(entries_[i]), std::move(text)); }

  void checkForm(std::size_t i) {
    const auto& entry = entries_[i];
    const bool hasPurpose = numberIn(entry, "purpose_id").has_value();
    const bool hasPermission = textIn(entry, "permission").has_value();
    if (!numberIn(entry, "time") || hasPurpose == hasPermission || !textIn(entry, "to") || !textIn(entry, "cause")) {
      fault(i, "is no decision");
    }
    const auto number = numberIn(entry, "number");
    if (!number) fault(i, "has no number");
    if (i == 0 || !number) return;
    if (const auto last = numberIn(entries_[i - 1], "number"); last && *number <= *last) {
      fault(i, "stands after " + nameOf(entries_[i - 1]));
    }
  }

  void checkLink(std::size_t i) {
    const auto* const member = entries_[i].if_contains("previous");
    if (member == nullptr) {
      if (chained_ > 0) fault(i, "has no hash of the entry before it, though the chain had begun");
      return;
    }
    ++chained_;
    const auto previous = textIn(entries_[i], "previous").value_or("");
    if (isSha256(previous)) {
      checkHash(i, previous);
    } else if (previous == chain_start::first || previous == chain_start::removed) {
      if (i > 0) fault(i, "says that none is before it, but " + nameOf(entries_[i - 1]) + " is");
    } else if (previous == chain_start::unchained) {
      if (chained_ > 1) fault(i, "says that the chain begins here, but it had begun");
      if (i == 0 && !mayLackOlder()) fault(i, "the entries from before the chain, which it speaks of, are missing");
    } else if (previous == chain_start::lost) {
      fault(i, "the store was damaged before it: nothing shows that no entry is missing there");
    } else {
      fault(i, "has no hash of the entry before it");
    }
  }

  void checkHash(std::size_t i, std::string_view previous) {
    if (i == 0) {
      if (!mayLackOlder()) fault(i, "the entries before it are missing");
      return;
    }
    if (previous == hashes_[i - 1]) return;
    const auto real = placeOf_.find(std::string(previous));
    if (real != placeOf_.end()) {
      fault(i, "follows " + nameOf(entries_[real->second]) + " and not " + nameOf(entries_[i - 1]) +
                   ": entries were inserted or moved");
    } else {
      findings_.fault(nameOf(entries_[i - 1]),
                      "is not what " + nameOf(entries_[i]) + " follows: it was changed, or one after it was removed");
    }
  }

  void checkHead() {
    if (!state_.isHeadKnown) return;
    if (chained_ == 0) {
      if (state_.head) findings_.fault("history", "its newest entries are missing");
      return;
    }
    if (!state_.head) {
      findings_.fault("history", "the hash of its newest entry is missing");
    } else if (*state_.head != hashes_.back()) {
      fault(entries_.size() - 1, "is not the newest one: it was changed, or newer ones were removed");
    }
  }

  const HistoryEntries& entries_;
  const ChainState& state_;
  Findings& findings_;
  std::vector<std::string> hashes_;
  std::unordered_map<std::string, std::size_t> placeOf_;
  std::size_t chained_ = 0;
};

}  // namespace

json::object hashedPart(const json::object& entry) {
  json::object part = entry;
  for (const auto* member : {"number", "upload", "link", "hash"}) part.erase(member);
  return part;
}

std::string entryHash(const json::object& entry) {
  return sha256(canonicalJson(hashedPart(entry)));
}

std::string nameOf(const json::object& entry) {
  const auto number = numberIn(entry, "number");
  return number ? "entry " + std::to_string(*number) : "an entry without a number";
}

void checkChain(const HistoryEntries& entries, const ChainState& state, Findings& findings) {
  ChainCheck(entries, state, findings).run();
}

}  // namespace quillon::proof
