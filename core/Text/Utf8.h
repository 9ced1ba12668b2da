// Strict UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF.
#pragma once

#include <cstddef>
#include <string_view>

namespace quillon {

// The length in bytes (1 to 4) of the first character of a non-empty text; 0 when it is invalid.
[[nodiscard]] std::size_t utf8Length(std::string_view text) noexcept;

[[nodiscard]] bool isUtf8(std::string_view text) noexcept;

}  // namespace quillon
