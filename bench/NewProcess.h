// Measures what something costs the first time, in a process that has done nothing else.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quillon::bench {

/// Work on the contents of a file, and what it measures. They are followed by at least 64 readable bytes.
using FirstWork = std::function<double(std::string_view contents)>;

/// Makes @p work known under @p name; from a static initialiser.
bool registerFirstWork(std::string name, FirstWork work);

/// What the work measures in a new process of this program, with the contents of @p file.
/// Throws std::runtime_error when that process fails.
double measuredInNewProcess(const std::string& name, const std::string& file);

/// The part of the new process; nothing when this process was started to run benchmarks.
std::optional<int> runAsNewProcess(int argc, char** argv);

}  // namespace quillon::bench
