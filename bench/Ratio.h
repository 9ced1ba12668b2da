// Comparisons of two benchmarks of one run, with a limit that we hold ourselves to.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillon::bench {

/// Names the processor time among the figures of a benchmark. A busy machine disturbs it least: the right figure for
/// work that waits for nothing.
inline constexpr std::string_view kProcessorTime = "processor time";

/// A figure of a benchmark: its real time, its processor time, or the counter of the given name.
struct Figure {
  std::string benchmark;
  std::string counter = {};
};

/// "The median of `measured` is at most `limit` times that of `reference`."
struct Ratio {
  std::string claim;
  Figure measured;
  Figure reference;
  double limit;
};

/// All comparisons, printed after the run. Add to it from a static initialiser:
/// `const bool registered = expectRatio({...});`. The benchmarks named need Repetitions for a meaningful median.
inline std::vector<Ratio>& ratios() {
  static std::vector<Ratio> all;
  return all;
}

inline bool expectRatio(Ratio ratio) {
  ratios().push_back(std::move(ratio));
  return true;
}

}  // namespace quillon::bench
