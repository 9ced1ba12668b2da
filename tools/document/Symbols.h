// The texts that the fields of a document's enumerations may have.
#pragma once

#include <string_view>
#include <vector>

#include "core/Json/JsonType.h"

namespace quillon::tools {

// The cases of an enumeration, in their order; none for one of which any text is a case.
[[nodiscard]] std::vector<std::string_view> symbolsOf(const JsonType& type);

// The permissions that the SDK knows, in their order.
[[nodiscard]] std::vector<std::string_view> knownPermissions();

}  // namespace quillon::tools
