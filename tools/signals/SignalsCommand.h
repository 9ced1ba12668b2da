// `quillon-consent signals`: the strings of the advertising trade, read, written and explained.
#pragma once

namespace CLI {
class App;
}

namespace quillon::tools {

void addSignalsCommand(CLI::App& app, int& exitCode);

}  // namespace quillon::tools
