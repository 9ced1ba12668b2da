// Texts as they may stand in a log that people read on a terminal.
#pragma once

#include <string>
#include <string_view>

namespace quillon {

// A value from outside, on one line: line breaks, what terminals obey, what changes the order of writing and what is no
// UTF-8 become escapes such as \n, \x1b or \u202e. What exceeds 64 KiB is cut and counted.
[[nodiscard]] std::string escapedForLog(std::string_view value);

// A whole message: the same without the cut, but for its line breaks and tabs, which stay.
[[nodiscard]] std::string printableForLog(std::string_view message);

}  // namespace quillon
