// Texts of a new configuration, in the languages that they are written in.
#pragma once

#include <string_view>

namespace quillon::tools {

// template.json of this folder.
extern const std::string_view configurationTemplate;

}  // namespace quillon::tools
