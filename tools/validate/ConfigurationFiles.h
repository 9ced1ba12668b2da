// Finds configuration files below a folder.
#pragma once

#include <expected>
#include <string>
#include <vector>

namespace quillon::tools {

// All files named config.json or config_LANGUAGE.json below a folder, sorted by name. Links to folders are not
// followed; a file with several names is listed once. An error if the folder is unreadable, has none or more than ten
// thousand.
[[nodiscard]] std::expected<std::vector<std::string>, std::string> configurationsBelow(const std::string& folder);

}  // namespace quillon::tools
