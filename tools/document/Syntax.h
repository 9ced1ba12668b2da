// Checks JSON syntax as decode() does.
#pragma once

#include <optional>
#include <string_view>

#include "tools/document/Document.h"

namespace quillon::tools {

[[nodiscard]] std::optional<SyntaxError> syntaxError(std::string_view text);

}  // namespace quillon::tools
