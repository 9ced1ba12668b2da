// The history of decisions over the journal of the store.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/KeyValueSuite.h"
#include "quillon/DecisionHistory.h"
#include "quillon/PostConsentsRequest.h"

namespace quillon {

// The circumstances that every decision of one moment has in common.
struct Occasion {
  GivenType givenType;
  std::int64_t time;  // whole seconds since 1970
  std::string language;
};

// The text of a decision in the journal. Never longer than a record may be.
[[nodiscard]] std::string journalText(const Decision& decision);

// The entries of a page that the journal was asked for with that count. A record whose text is none of a decision
// counts as damaged.
[[nodiscard]] HistoryPage historyOf(const JournalPage& page, std::size_t count);

// What the records without an outcome come to, newest first, when the server has taken an upload. The subject of each
// is the key of its consent in the store; one that is still pending keeps its decisions since the one that was sent.
[[nodiscard]] std::vector<std::string> outcomesOf(const std::vector<JournalRecord>& pending,
                                                  const PostConsentsRequest& sent,
                                                  const std::function<bool(const Decision&)>& isStillPending);

}  // namespace quillon
