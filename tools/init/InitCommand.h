#pragma once

namespace CLI {
class App;
}

namespace quillon::tools {

// Adds the sub-command `init`. It runs during parsing and sets exitCode, which must outlive the parsing.
void addInitCommand(CLI::App& app, int& exitCode);

}  // namespace quillon::tools
