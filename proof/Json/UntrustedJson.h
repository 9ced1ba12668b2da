// Strict parsing of untrusted JSON.
#pragma once

#include <boost/json/value.hpp>
#include <cstddef>
#include <expected>
#include <string>
#include <string_view>

namespace quillon::proof {

inline constexpr std::size_t largestProofFile = std::size_t{32} << 20;
inline constexpr std::size_t deepestProofFile = 64;

// Rejects text beyond the size and depth limits, invalid UTF-8 and duplicate members, of which two readers might each
// see another one. Numbers are read exactly.
[[nodiscard]] std::expected<boost::json::value, std::string> readUntrustedJson(std::string_view text);

}  // namespace quillon::proof
