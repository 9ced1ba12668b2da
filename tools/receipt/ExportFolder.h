// Exports on the disk.
#pragma once

#include <expected>
#include <string>

#include "proof/Check/Verification.h"

namespace quillon::tools {

// Every file below the folder. Refuses links, and more or larger files than an export has.
[[nodiscard]] std::expected<proof::ExportFiles, std::string> readFolder(const std::string& folder);

// Makes the folder, for this user only; it must be new or empty.
[[nodiscard]] std::expected<void, std::string> writeFolder(const std::string& folder, const proof::ExportFiles& files);

}  // namespace quillon::tools
