// The content of a file that the command line names.
#pragma once

#include <cstddef>
#include <expected>
#include <string>

namespace quillon::tools {

inline constexpr std::size_t largestDocument = std::size_t{32} << 20;

// All of it, or so much of one larger than a document may be that whoever decodes it refuses it; "-" is the standard
// input. The error is the system's.
[[nodiscard]] std::expected<std::string, std::string> contentOf(const std::string& path);

}  // namespace quillon::tools
