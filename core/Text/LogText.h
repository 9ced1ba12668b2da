// Escaping for logs shown on a terminal.
#pragma once

#include <string>
#include <string_view>

namespace quillon {

// An untrusted value on one line: line breaks, terminal controls, bidirectional controls and invalid UTF-8 are escaped,
// such as \n, \x1b or \u202e. Beyond 64 KiB it is cut and the size noted.
[[nodiscard]] std::string escapedForLog(std::string_view value);

// The first 64 bytes, cut at a character boundary and escaped in the same way; "..." follows where there is more.
[[nodiscard]] std::string excerptForLog(std::string_view value);

// A whole message: escaped in the same way, but not cut, and with line breaks and tabs kept.
[[nodiscard]] std::string printableForLog(std::string_view message);

}  // namespace quillon
