// quillon-consent preview: hands over to the program that has the screens.
#pragma once

#include <CLI/CLI.hpp>

namespace quillon::tools {

void addPreviewCommand(CLI::App& app, int& exitCode);

}  // namespace quillon::tools
