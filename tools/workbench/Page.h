// The files of the page, which are a part of the program.
#pragma once

#include <optional>
#include <string_view>

namespace quillon::tools {

// The content of a file of the folder page/; nullopt when there is none of that name.
[[nodiscard]] std::optional<std::string_view> pageFile(std::string_view name);

}  // namespace quillon::tools
