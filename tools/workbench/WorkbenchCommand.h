#pragma once

namespace CLI {
class App;
}

namespace quillon::tools {

// Adds the sub-command `workbench`. It runs during parsing and sets exitCode, which must outlive the parsing.
void addWorkbenchCommand(CLI::App& app, int& exitCode);

}  // namespace quillon::tools
