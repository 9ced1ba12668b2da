// The page's files, embedded in the program.
#pragma once

#include <optional>
#include <string_view>

namespace quillon::tools {

// The content of a file in the folder page/; nullopt if there is no such file.
[[nodiscard]] std::optional<std::string_view> pageFile(std::string_view name);

}  // namespace quillon::tools
