// JSON from anywhere.
#pragma once

#include <boost/json/value.hpp>
#include <cstddef>
#include <expected>
#include <string>
#include <string_view>

namespace quillon::proof {

inline constexpr std::size_t largestProofFile = std::size_t{32} << 20;
inline constexpr std::size_t deepestProofFile = 64;

// Refuses what is larger or deeper than the limits, is not UTF-8, or says a member twice, of which two readers would
// see one each. Numbers are read exactly.
[[nodiscard]] std::expected<boost::json::value, std::string> readUntrustedJson(std::string_view text);

}  // namespace quillon::proof
