// UTF-8 as it must be: no overlong forms, no surrogates, nothing beyond U+10FFFF.
#pragma once

#include <cstddef>
#include <string_view>

namespace quillon {

// The length in bytes, one to four, of the character at the start of a text that is not empty; 0 when there is no sound
// one.
[[nodiscard]] std::size_t utf8Length(std::string_view text) noexcept;

[[nodiscard]] bool isUtf8(std::string_view text) noexcept;

}  // namespace quillon
