// Replaces a damaged or missing suite file.
#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/KeyValueSuite.h"
#include "platform/linux/Folder.h"

namespace quillon {

// Creates a new file with these entries and this journal, complete and durable, and renames it into place, so that at
// every moment either the old or the new file is at the path. The old file is kept as "<path>.damaged-<UTC>-<n>", with
// its rollback journal; returns that name, empty if there was none. The folder must be locked, and no process may write
// to the old file. On failure the old file stays in place.
[[nodiscard]] std::expected<std::filesystem::path, std::string> replaceSuiteFile(
    const std::filesystem::path& path, const SuiteEntries& entries, const std::vector<JournalRecord>& journal,
    const Folder& folder);

// Whether a file of that path was set aside and still exists.
[[nodiscard]] bool isSuiteFileKeptAside(const std::filesystem::path& path);

}  // namespace quillon
