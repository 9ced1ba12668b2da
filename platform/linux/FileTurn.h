// A turn that processes take by locking a file.
#pragma once

#include <expected>
#include <filesystem>
#include <memory>
#include <string>

#include "platform/KeyValueSuite.h"

namespace quillon {

// Null while somebody else has it, in this process or another. The file (0600) is made when it is missing and stays;
// the lock ends with the turn, or with the process and those that it forked while it held the turn. Never blocks. An
// error when there can be no such file, or it is another user's.
[[nodiscard]] std::expected<std::unique_ptr<StoreTurn>, std::string> tryFileTurn(const std::filesystem::path& file);

}  // namespace quillon
