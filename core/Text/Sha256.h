#pragma once

#include <string>
#include <string_view>

namespace quillon {

// The SHA-256 digest of the bytes, as 64 lower-case hexadecimal digits. Thread-safe.
[[nodiscard]] std::string sha256(std::string_view bytes);

// Whether a text has the form of such a digest.
[[nodiscard]] bool isSha256(std::string_view text) noexcept;

}  // namespace quillon
