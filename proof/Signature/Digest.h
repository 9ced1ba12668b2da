#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace quillon::proof {

using Digest = std::array<std::uint8_t, 32>;

// The SHA-256 digest as bytes, for what is not written in hexadecimal.
[[nodiscard]] Digest digestOf(std::string_view bytes);

}  // namespace quillon::proof
