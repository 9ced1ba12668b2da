#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace quillon::proof {

using Sha256 = std::array<std::uint8_t, 32>;

[[nodiscard]] Sha256 sha256(std::string_view bytes);
// The same in 64 hexadecimal digits, in lower case.
[[nodiscard]] std::string sha256Text(std::string_view bytes);
// Whether the text has the form of sha256Text().
[[nodiscard]] bool isSha256Text(std::string_view text);

}  // namespace quillon::proof
