// What we hold ourselves to: a figure of a run stays within a limit, alone or compared with another of the same run.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillon::bench {

/// Names the processor time among the figures of a benchmark. A busy machine disturbs it least: the right figure for
/// work that waits for nothing.
inline constexpr std::string_view kProcessorTime = "processor time";

/// A figure of a benchmark, in its unit: its real time, its processor time, or the counter of the given name.
struct Figure {
  std::string benchmark;
  std::string counter = {};
};

/// "The median of `measured` is at most `limit`", or, with a reference, "at most `limit` times that of `reference`".
struct Expectation {
  std::string claim;
  Figure measured;
  std::optional<Figure> reference;
  double limit;
};

/// All expectations, compared and printed after the run. Add to it from a static initialiser:
/// `const bool registered = expectAtMost({...});`. The benchmarks named need Repetitions for a meaningful median.
inline std::vector<Expectation>& expectations() {
  static std::vector<Expectation> all;
  return all;
}

inline bool expectAtMost(Expectation expectation) {
  expectations().push_back(std::move(expectation));
  return true;
}

}  // namespace quillon::bench
