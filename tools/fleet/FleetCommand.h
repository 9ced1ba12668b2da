#pragma once

namespace CLI {
class App;
}

namespace quillon::tools {

// Adds the sub-command `fleet` to the command line. When it is chosen it runs while the line is parsed, and leaves its
// exit status in exitCode, which must outlive the parsing.
void addFleetCommand(CLI::App& app, int& exitCode);

}  // namespace quillon::tools
