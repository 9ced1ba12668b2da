#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace quillon {

// SHA-256 digests. Thread-safe.
using Sha256 = std::array<std::uint8_t, 32>;
[[nodiscard]] Sha256 sha256Bytes(std::string_view bytes);
// As 64 lower-case hexadecimal digits.
[[nodiscard]] std::string sha256(std::string_view bytes);

// Whether a text has the form of such digits.
[[nodiscard]] bool isSha256(std::string_view text) noexcept;

}  // namespace quillon
