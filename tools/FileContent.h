// Reads and replaces a file named on the command line.
#pragma once

#include <cstddef>
#include <expected>
#include <string>
#include <string_view>

namespace quillon::tools {

inline constexpr std::size_t largestDocument = std::size_t{32} << 20;

// The content; a file above the document limit is cut just beyond it, so that decoding rejects it. "-" is standard
// input. The error is the system's.
[[nodiscard]] std::expected<std::string, std::string> contentOf(const std::string& path);

// Replaces the content atomically; "-" is standard output. A symbolic link is followed and kept. The error is the
// system's.
[[nodiscard]] std::expected<void, std::string> replaceContent(const std::string& path, std::string_view content);

}  // namespace quillon::tools
