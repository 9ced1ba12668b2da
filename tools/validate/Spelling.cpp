#include "tools/validate/Spelling.h"

#include <algorithm>
#include <array>

#include "core/Text/Ascii.h"
#include "tools/document/DocumentPath.h"

namespace quillon::tools {
namespace {

constexpr std::size_t longestWord = 64;

using Row = std::array<std::size_t, longestWord + 1>;

// The edit distance with insertion, deletion, substitution and transposition, ignoring case.
std::size_t distance(std::string_view from, std::string_view to) {
  Row beforeLast{};
  Row last{};
  Row row{};
  for (std::size_t j = 0; j <= to.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= from.size(); ++i) {
    beforeLast = last;
    last = row;
    row[0] = i;
    for (std::size_t j = 1; j <= to.size(); ++j) {
      const bool isSame = lowerCase(from[i - 1]) == lowerCase(to[j - 1]);
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (isSame ? 0 : 1)});
      const bool isSwapped = i > 1 && j > 1 && lowerCase(from[i - 1]) == lowerCase(to[j - 2]) &&
                             lowerCase(from[i - 2]) == lowerCase(to[j - 1]);
      if (isSwapped) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
    }
  }
  return row[to.size()];
}

}  // namespace

std::string_view nearest(std::string_view text, std::span<const std::string_view> candidates) {
  if (text.empty() || text.size() > longestWord) return {};
  std::string_view best;
  // At most a third of the letters, so that "token" does not suggest "version".
  std::size_t bestDistance = text.size() / 3 + 1;
  for (const std::string_view candidate : candidates) {
    if (candidate.size() > longestWord) continue;
    const std::size_t difference = std::max(text.size(), candidate.size()) - std::min(text.size(), candidate.size());
    if (difference >= bestDistance) continue;
    const std::size_t found = distance(text, candidate);
    if (found >= bestDistance) continue;
    best = candidate;
    bestDistance = found;
  }
  return best;
}

std::string didYouMean(std::string_view text, std::span<const std::string_view> candidates) {
  const std::string_view meant = nearest(text, candidates);
  return meant.empty() ? "" : "; did you mean " + inQuotes(meant) + "?";
}

}  // namespace quillon::tools
