// Identifiers as UUIDs (RFC 9562).
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/Text/Ascii.h"
#include "platform/RandomSource.h"

namespace quillon {

// A UUID of these bytes; the bits of version and variant are replaced.
[[nodiscard]] std::string uuidOf(std::array<std::uint8_t, 16> bytes, unsigned version,
                                 std::string_view digits = hexDigits);
// A random UUID, version 4.
[[nodiscard]] std::string randomUuid(RandomSource& random, std::string_view digits = hexDigits);

}  // namespace quillon
