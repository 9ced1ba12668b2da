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

// The store's file, with links resolved; an error when there is none.
[[nodiscard]] std::expected<std::filesystem::path, std::string> storeFile(const Platform& platform);

// Opens a suite's file directly: the store would replace a damaged one, which a read must not do. Damaged entries are
// told on standard error.
[[nodiscard]] std::expected<SuiteFile::Opened, std::string> openSuite(const std::filesystem::path& file);

// Every entry, newest first.
[[nodiscard]] std::expected<HistoryPage, std::string> historyIn(SuiteFile& file);

}  // namespace quillon::tools
