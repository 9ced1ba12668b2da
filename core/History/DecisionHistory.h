// The history of decisions, kept in the store's journal.
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

// The fields shared by the decisions of one transaction.
struct DecisionContext {
  GivenType givenType;
  std::int64_t time;        // whole seconds since 1970
  std::string language;     // of the user interface
  std::string application;  // the application's id; empty before a setup
  // Digest of the notice shown, or applicationsNotice; empty when nothing was shown.
  std::string notice = {};
};

// The journal text of a decision, never longer than maximumJournalTextBytes.
[[nodiscard]] std::string journalText(const Decision& decision);

// The entries of a journal page requested with `count`. A record that is no decision counts as damaged.
[[nodiscard]] HistoryPage historyOf(const JournalPage& page, std::size_t count);

// The subject of a decision: one purpose or one permission.
struct DecisionSubject {
  std::optional<std::int64_t> purposeId = std::nullopt;
  std::optional<VantariKey> permission = std::nullopt;

  auto operator<=>(const DecisionSubject&) const = default;
};

// The number of the newest unmarked decision on each subject. It shows whether anything was decided after an upload was
// made; values cannot, since a decision may return to an earlier value.
using NewestDecisions = std::map<DecisionSubject, std::int64_t>;
[[nodiscard]] NewestDecisions newestDecisions(const std::vector<JournalRecord>& unmarked);

// The outcome of each unmarked decision that an upload covers, by number: those on a subject in `sent`, up to number
// `last`. The newest of a subject's was uploaded if the upload carried the subject.
[[nodiscard]] std::map<std::int64_t, UploadOutcome> outcomesOf(const std::vector<JournalRecord>& unmarked,
                                                               std::int64_t last, const std::set<DecisionSubject>& sent,
                                                               const std::set<DecisionSubject>& carried);

}  // namespace quillon
