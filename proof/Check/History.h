// Reads and verifies an exported history.
#pragma once

#include <expected>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "proof/History/Chain.h"

namespace quillon::proof {

// The text of each notice by its hash; nullopt if the store has expired it.
using NoticeTexts = std::map<std::string, std::optional<std::string>>;

struct ExportedHistory {
  HistoryEntries entries;
  ChainState state;
  std::vector<std::string> expiredNotices;
};

// Reads an export's history.json, or the output of `quillon-consent store history`, one entry per line.
[[nodiscard]] std::expected<ExportedHistory, std::string> readHistory(std::string_view text);

// Verifies the notices that the entries refer to.
void checkNotices(const HistoryEntries& entries, const NoticeTexts& notices, Findings& findings);
// Compares the entries' times with each other and with the verifier's clock, `now`, in seconds since 1970.
void checkTimes(const HistoryEntries& entries, std::int64_t now, Findings& findings);

}  // namespace quillon::proof
