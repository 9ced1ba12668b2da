#pragma once

namespace CLI {
class App;
}

namespace quillon::tools {

// Adds the sub-command `diff`. It runs during parsing and sets exitCode, which must outlive the parsing.
void addDiffCommand(CLI::App& app, int& exitCode);

}  // namespace quillon::tools
