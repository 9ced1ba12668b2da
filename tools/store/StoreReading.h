// Reads the store of a data folder without changing it.
#pragma once

#include <expected>
#include <filesystem>
#include <string>

#include "core/History/DecisionHistory.h"
#include "platform/Platform.h"
#include "platform/linux/SuiteFile.h"

namespace quillon::tools {

// The services over a data folder; an empty one is that of `quillon-consent host`.
[[nodiscard]] Platform platformOver(const std::filesystem::path& dataDirectory);

// A suite's file, with links resolved; an error when there is none.
[[nodiscard]] std::expected<std::filesystem::path, std::string> suiteFile(const Platform& platform,
                                                                          std::string_view suite);

// Opens the file directly: the store would replace a damaged one, which a read must not do. Damaged entries are told on
// standard error.
[[nodiscard]] std::expected<SuiteFile::Opened, std::string> openSuite(const Platform& platform, std::string_view suite);

// Every decision, newest first; the entries are those of the same file.
[[nodiscard]] std::expected<HistoryPage, std::string> historyIn(SuiteFile& file, const SuiteEntries& entries);

}  // namespace quillon::tools
