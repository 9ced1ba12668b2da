// What somebody may have meant to write.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::tools {

// The candidate that differs from the text in a few letters at most, case aside; empty when there is none. Time is
// bounded: no word is longer than 64 letters.
[[nodiscard]] std::string_view nearest(std::string_view text, std::span<const std::string_view> candidates);

// "; did you mean "..."?", or nothing.
[[nodiscard]] std::string didYouMean(std::string_view text, std::span<const std::string_view> candidates);

}  // namespace quillon::tools
