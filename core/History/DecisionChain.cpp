#include "core/History/DecisionChain.h"

#include <algorithm>
#include <utility>

#include "core/History/DecisionHistory.h"
#include "core/Json/Codec.h"
#include "core/Text/Sha256.h"

namespace quillon {
namespace {

// A possible predecessor of an entry.
struct Earlier {
  std::int64_t number = 0;
  bool isDamaged = false;
  bool isRemoval = false;
  bool isChained = false;
  std::string hash = {};
};

bool isChained(const std::string& text) {
  const auto decision = decode<Decision>(text);
  return decision && decision->previous;
}

// Records and damaged numbers of the page, newest first.
std::vector<Earlier> sequence(const JournalPage& page) {
  std::vector<Earlier> all;
  all.reserve(page.records.size() + page.damaged.size());
  for (const JournalRecord& record : page.records) {
    all.push_back({record.number, record.text.empty(), record.text == removalRecord, isChained(record.text),
                   entryHash(record.text)});
  }
  for (const auto number : page.damaged) all.push_back({.number = number, .isDamaged = true});
  std::ranges::sort(all, std::greater(), &Earlier::number);
  return all;
}

// Whether the journal's limit may have dropped records before this one; with fewer records none is dropped.
bool mayHaveAged(std::int64_t oldest, const ChainState& state) {
  constexpr auto fewestKept = static_cast<std::int64_t>(maximumJournalRecords - journalRecordsDroppedAtOnce);
  return oldest > 1 && state.newestNumber && *state.newestNumber - oldest >= fewestKept - 1;
}

// `earlier` is null for the oldest record.
HistoryLink linkOf(const Decision& decision, std::int64_t number, const Earlier* earlier, const ChainState& state) {
  const auto linked = [](bool isIntact) { return isIntact ? HistoryLink::intact : HistoryLink::broken; };
  const bool hasAged = !earlier && mayHaveAged(number, state);
  if (!decision.previous) {
    const bool isBefore = earlier ? !earlier->isChained && !earlier->isRemoval : hasAged || number == 1;
    return isBefore ? HistoryLink::beforeChain : HistoryLink::broken;
  }
  const std::string& previous = *decision.previous;
  if (previous == chain_start::first) return linked(!earlier && number == 1);
  if (previous == chain_start::removed) return linked(earlier ? earlier->isRemoval : hasAged);
  if (previous == chain_start::unchained) {
    return linked(earlier ? !earlier->isChained && !earlier->isRemoval && !earlier->isDamaged : hasAged);
  }
  if (!earlier) return linked(hasAged && isSha256(previous));
  return linked(!earlier->isDamaged && earlier->number == number - 1 && earlier->hash == previous);
}

}  // namespace

std::string entryHash(std::string_view journalText) {
  return sha256(journalText);
}

ChainedTexts chained(const std::vector<Decision>& decisions, std::string previous) {
  ChainedTexts chain{{}, std::move(previous)};
  chain.texts.reserve(decisions.size());
  for (Decision decision : decisions) {
    decision.previous = std::move(chain.head);
    chain.texts.push_back(journalText(decision));
    chain.head = entryHash(chain.texts.back());
  }
  return chain;
}

std::string chainStart(const JournalPage& newest, bool wereEntriesLost) {
  if (!newest.damaged.empty()) return std::string(chain_start::lost);
  if (newest.records.empty()) return std::string(wereEntriesLost ? chain_start::lost : chain_start::first);
  const std::string& text = newest.records.front().text;
  if (text == removalRecord) return std::string(chain_start::removed);
  // A chained entry without a stored head: the head was lost.
  return std::string(text.empty() || isChained(text) ? chain_start::lost : chain_start::unchained);
}

HistoryPage verifiedHistory(JournalPage page, std::size_t count, const ChainState& state) {
  const std::vector<Earlier> all = sequence(page);
  const bool isLast = all.size() <= count;
  if (!isLast) {
    const std::int64_t further = all.back().number;
    std::erase_if(page.records, [&](const JournalRecord& record) { return record.number == further; });
    std::erase(page.damaged, further);
  }
  HistoryPage history = historyOf(page, count);
  if (isLast) history.before = std::nullopt;
  if (state.isFirstPage) {
    const std::string newest = all.empty() || !all.front().isChained ? std::string() : all.front().hash;
    history.isNewestMissing = newest != state.head;
  }
  for (HistoryEntry& entry : history.entries) {
    const auto own = std::ranges::find(all, entry.number, &Earlier::number);
    entry.hash = own->hash;
    const auto earlier = std::next(own);
    entry.link = linkOf(entry.decision, entry.number, earlier == all.end() ? nullptr : &*earlier, state);
  }
  return history;
}

}  // namespace quillon
