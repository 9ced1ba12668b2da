// Measures first-time costs, in a new process.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quillon::bench {

/// Work on a file's contents, and its measurement. The contents are followed by at least 64 readable bytes.
using FirstWork = std::function<double(std::string_view contents)>;

/// Registers @p work under @p name; from a static initialiser.
bool registerFirstWork(std::string name, FirstWork work);

/// Runs the work in a new process of this program with the contents of @p file, and returns its measurement. Throws
/// std::runtime_error when that process fails.
double measuredInNewProcess(const std::string& name, const std::string& file);

/// The new process's part; nullopt when this process was started to run benchmarks.
std::optional<int> runAsNewProcess(int argc, char** argv);

}  // namespace quillon::bench
