// A history as it is handed out, read and checked.
#pragma once

#include <expected>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "proof/History/Chain.h"

namespace quillon::proof {

// The text of a notice by its hash; nullopt for one that is gone by age.
using NoticeTexts = std::map<std::string, std::optional<std::string>>;

struct ExportedHistory {
  HistoryEntries entries;
  ChainState state;
  std::vector<std::string> goneNotices;
};

// Reads the history.json of an export, or entries as `quillon-consent store history` prints them, one a line.
[[nodiscard]] std::expected<ExportedHistory, std::string> readHistory(std::string_view text);

// Checks the notices that the entries name.
void checkNotices(const HistoryEntries& entries, const NoticeTexts& notices, Findings& findings);
// Checks the times of the entries against each other and against the clock of the reader.
void checkTimes(const HistoryEntries& entries, std::int64_t now, Findings& findings);

}  // namespace quillon::proof
