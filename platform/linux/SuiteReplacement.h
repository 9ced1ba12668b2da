// A new file for a suite, put in the place of one that is damaged or missing.
#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/KeyValueSuite.h"
#include "platform/linux/Folder.h"

namespace quillon {

// Makes a new file with these entries and this journal, complete and durable before it takes its place, in one step, so
// that at every moment either the old file or the new one stands there. What stood there is kept as
// "<path>.damaged-<UTC>-<n>", with its rollback journal; the name is returned, empty when nothing stood there. The
// folder must be locked, and nobody may write to the old file. On failure the old file keeps its place.
[[nodiscard]] std::expected<std::filesystem::path, std::string> replaceSuiteFile(
    const std::filesystem::path& path, const SuiteEntries& entries, const std::vector<JournalRecord>& journal,
    const Folder& folder);

// Whether a file of that path was ever set aside and is still kept.
[[nodiscard]] bool isSuiteFileKeptAside(const std::filesystem::path& path);

}  // namespace quillon
