#pragma once

namespace CLI {
class App;
}

namespace quillon::tools {

// Adds the sub-command `receipt`. It runs during parsing and sets exitCode, which must outlive the parsing.
void addReceiptCommand(CLI::App& app, int& exitCode);

}  // namespace quillon::tools
