// Suggests corrections of misspelt names.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::tools {

// The candidate with the smallest edit distance, ignoring case; empty if none is close. Time is bounded: words longer
// than 64 letters are not compared.
[[nodiscard]] std::string_view nearest(std::string_view text, std::span<const std::string_view> candidates);

// "; did you mean "..."?", or empty.
[[nodiscard]] std::string didYouMean(std::string_view text, std::span<const std::string_view> candidates);

}  // namespace quillon::tools
