// Identifiers as UUIDs (RFC 9562).
#pragma once

#include <string>
#include <string_view>

#include "platform/RandomSource.h"

namespace quillon::proof {

// Version 4.
[[nodiscard]] std::string randomUuid(RandomSource& random);
// Version 8: the same for the same text.
[[nodiscard]] std::string uuidOf(std::string_view text);

}  // namespace quillon::proof
