// The history of decisions over the journal of the store.
#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/KeyValueSuite.h"
#include "quillon/DecisionHistory.h"

namespace quillon {

// What every decision of one moment has in common.
struct DecisionContext {
  GivenType givenType;
  std::int64_t time;        // whole seconds since 1970
  std::string language;     // in which the user was addressed
  std::string application;  // the application's id; empty before a set-up
};

// The text of a decision in the journal. Never longer than a record may be.
[[nodiscard]] std::string journalText(const Decision& decision);

// The entries of a page that the journal was asked for with that count. A record whose text is none of a decision
// counts as damaged.
[[nodiscard]] HistoryPage historyOf(const JournalPage& page, std::size_t count);

// What a decision is about: one purpose or one permission.
struct DecisionSubject {
  std::optional<std::int64_t> purposeId = std::nullopt;
  std::optional<VantariKey> permission = std::nullopt;

  auto operator<=>(const DecisionSubject&) const = default;
};

// The numbers of the newest unsettled decision on each subject. They tell whether anything was decided after an upload
// was made, which the values cannot: a decision may return to what it was.
using NewestDecisions = std::map<DecisionSubject, std::int64_t>;
[[nodiscard]] NewestDecisions newestDecisions(const std::vector<JournalRecord>& unsettled);

// The outcome of each unsettled decision that an upload settles, by number: of every subject in `sent`, everything up
// to the decision that was the newest when the upload was made. That one was uploaded when the upload carried the
// subject.
[[nodiscard]] std::map<std::int64_t, UploadOutcome> outcomesOf(const std::vector<JournalRecord>& unsettled,
                                                               const NewestDecisions& sent,
                                                               const std::set<DecisionSubject>& carried);

}  // namespace quillon
