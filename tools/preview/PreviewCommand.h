// `quillon-consent preview`: executes the program that has the screens.
#pragma once

namespace CLI {
class App;
}

namespace quillon::tools {

void addPreviewCommand(CLI::App& app, int& exitCode);

}  // namespace quillon::tools
