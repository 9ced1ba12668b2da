// Reads and writes export folders.
#pragma once

#include <expected>
#include <string>

#include "proof/Check/Verification.h"

namespace quillon::tools {

// Reads every file below the folder. Rejects links, and more or larger files than an export has.
[[nodiscard]] std::expected<proof::ExportFiles, std::string> readFolder(const std::string& folder);

// Creates the folder, accessible to this user only; an existing one must be empty.
[[nodiscard]] std::expected<void, std::string> writeFolder(const std::string& folder, const proof::ExportFiles& files);

}  // namespace quillon::tools
