#pragma once

namespace CLI {
class App;
}

namespace quillon::tools {

// Adds the sub-command `check-server`. It runs while the command line is parsed, and leaves its exit status in
// exitCode, which must outlive the parsing.
void addCheckServerCommand(CLI::App& app, int& exitCode);

}  // namespace quillon::tools
