// The files that a command's arguments name.
#pragma once

#include <expected>
#include <string>
#include <vector>

namespace quillon::tools {

// The configurations below a folder, as publishers name them: config.json and config_LANGUAGE.json. In the order of
// their names; links to folders are not followed, and a file with several names is listed once. An error when the
// folder cannot be read, has none or has more than ten thousand.
[[nodiscard]] std::expected<std::vector<std::string>, std::string> configurationsBelow(const std::string& folder);

}  // namespace quillon::tools
