// A configuration in a file that the command line names.
#pragma once

#include <expected>
#include <string>

#include "quillon/MainConfiguration.h"

namespace quillon::tools {

// The configuration, or the first error and its place in the words of the SDK.
[[nodiscard]] std::expected<MainConfiguration, std::string> configurationOf(const std::string& path);

}  // namespace quillon::tools
