// The multilingual texts of new configurations.
#pragma once

#include <string_view>

namespace quillon::tools {

// The content of template.json in this folder.
extern const std::string_view configurationTemplate;

}  // namespace quillon::tools
