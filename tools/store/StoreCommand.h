#pragma once

namespace CLI {
class App;
}

namespace quillon::tools {

// Adds the sub-command `store`. It runs during parsing and sets exitCode, which must outlive the parsing.
void addStoreCommand(CLI::App& app, int& exitCode);

}  // namespace quillon::tools
