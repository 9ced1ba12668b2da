// Reads the store of a data folder without changing it.
#pragma once

#include <expected>
#include <filesystem>
#include <string>

#include "core/History/DecisionHistory.h"
#include "platform/Platform.h"
#include "platform/linux/SuiteFile.h"

namespace quillon::tools {

// The Linux services over a data folder; an empty path is the folder of `quillon-consent host`.
[[nodiscard]] Platform platformOver(const std::filesystem::path& dataDirectory);

// The path of a suite's file, with links resolved; an error if missing.
[[nodiscard]] std::expected<std::filesystem::path, std::string> suiteFile(const Platform& platform,
                                                                          std::string_view suite);

// Opens the file directly, since the store would replace a damaged one, which a read must not do. Reports damaged
// entries on standard error.
[[nodiscard]] std::expected<SuiteFile::Opened, std::string> openSuite(const Platform& platform, std::string_view suite);

// Every decision, newest first; `entries` must be from the same file.
[[nodiscard]] std::expected<HistoryPage, std::string> historyIn(SuiteFile& file, const SuiteEntries& entries);

}  // namespace quillon::tools
