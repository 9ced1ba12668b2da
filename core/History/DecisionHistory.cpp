#include "core/History/DecisionHistory.h"

#include <algorithm>
#include <limits>

#include "core/History/DecisionChain.h"
#include "core/Json/Codec.h"
#include "quillon/RawValue.h"

namespace quillon {
namespace {

constexpr std::size_t longestLanguage = 64;

DecisionSubject subjectOf(const Decision& decision) {
  return {decision.purposeId, decision.permission};
}

}  // namespace

std::string journalText(const Decision& decision) {
  if (decision.language.size() <= longestLanguage) return encode(decision);
  Decision shortened = decision;  // texts from the host may have any length
  shortened.language.resize(longestLanguage);
  return encode(shortened);
}

HistoryPage historyOf(const JournalPage& page, std::size_t count) {
  HistoryPage history;
  history.damaged = static_cast<std::int64_t>(page.damaged.size());
  std::int64_t oldest = std::numeric_limits<std::int64_t>::max();
  for (const auto number : page.damaged) oldest = std::min(oldest, number);
  for (const JournalRecord& record : page.records) {
    oldest = std::min(oldest, record.number);
    if (record.text == removalRecord) continue;
    auto decision = decode<Decision>(record.text);
    const auto outcome = record.mark.empty() ? UploadOutcome::pending : fromRawValue<UploadOutcome>(record.mark);
    if (decision && outcome) {
      history.entries.push_back({record.number, std::move(*decision), *outcome});
    } else {
      ++history.damaged;
    }
  }
  if (page.records.size() + page.damaged.size() >= std::max<std::size_t>(count, 1)) history.before = oldest;
  return history;
}

NewestDecisions newestDecisions(const std::vector<JournalRecord>& unmarked) {
  NewestDecisions newest;
  for (const JournalRecord& record : unmarked) {
    if (const auto decision = decode<Decision>(record.text)) newest.emplace(subjectOf(*decision), record.number);
  }
  return newest;
}

std::map<std::int64_t, UploadOutcome> outcomesOf(const std::vector<JournalRecord>& unmarked, std::int64_t last,
                                                 const std::set<DecisionSubject>& sent,
                                                 const std::set<DecisionSubject>& carried) {
  std::map<std::int64_t, UploadOutcome> outcomes;
  std::set<DecisionSubject> settled;
  for (const JournalRecord& record : unmarked) {
    if (record.number > last) continue;
    const auto decision = decode<Decision>(record.text);
    if (!decision) continue;
    const auto subject = subjectOf(*decision);
    if (!sent.contains(subject)) continue;
    const bool isNewest = settled.insert(subject).second;
    const auto outcome = !isNewest                   ? UploadOutcome::superseded
                         : carried.contains(subject) ? UploadOutcome::uploaded
                                                     : UploadOutcome::dropped;
    outcomes.emplace(record.number, outcome);
  }
  return outcomes;
}

}  // namespace quillon
