// The values of enumerations in documents.
#pragma once

#include <string_view>
#include <vector>

#include "core/Json/JsonType.h"

namespace quillon::tools {

// The enumeration's values, in order; empty if it accepts any text.
[[nodiscard]] std::vector<std::string_view> symbolsOf(const JsonType& type);

// The permissions known to the SDK, in order.
[[nodiscard]] std::vector<std::string_view> knownPermissions();

}  // namespace quillon::tools
