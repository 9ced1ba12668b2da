// A turn as a lock on a file.
#pragma once

#include <expected>
#include <filesystem>
#include <memory>
#include <string>

#include "platform/KeyValueSuite.h"

namespace quillon {

// Null while another owner, in any process, holds it. The file (0600) is created if missing and stays; the lock ends
// with the turn, or with the process and any children forked while it was held. Never blocks. An error when the file
// cannot be created or belongs to another user.
[[nodiscard]] std::expected<std::unique_ptr<StoreLock>, std::string> tryFileLock(const std::filesystem::path& file);

}  // namespace quillon
