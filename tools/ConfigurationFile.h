// Reads a configuration file named on the command line.
#pragma once

#include <expected>
#include <string>

#include "quillon/MainConfiguration.h"

namespace quillon::tools {

// The configuration, or the SDK's error text with the path of the first error.
[[nodiscard]] std::expected<MainConfiguration, std::string> configurationOf(const std::string& path);

}  // namespace quillon::tools
