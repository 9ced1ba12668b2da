#pragma once

namespace CLI {
class App;
}

namespace quillon::tools {

// Adds the sub-command `texts`. It runs during parsing and sets exitCode, which must outlive the parsing.
void addTextsCommand(CLI::App& app, int& exitCode);

}  // namespace quillon::tools
