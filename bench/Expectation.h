// Limits of the benchmarks: a figure stays within a limit, alone or relative to another of the same run.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillon::bench {

/// The name of a benchmark's processor time, which is least affected by a busy machine: the right figure for work that
/// does not wait.
inline constexpr std::string_view kProcessorTime = "processor time";

/// A figure of a benchmark, in its unit: real time, processor time, or a named counter.
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

/// All expectations, checked and printed after the run. Add one from a static initialiser: `const bool registered =
/// expectAtMost({...});`. The benchmarks named need Repetitions for a meaningful median.
inline std::vector<Expectation>& expectations() {
  static std::vector<Expectation> all;
  return all;
}

inline bool expectAtMost(Expectation expectation) {
  expectations().push_back(std::move(expectation));
  return true;
}

}  // namespace quillon::bench
