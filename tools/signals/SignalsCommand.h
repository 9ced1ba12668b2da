// `quillon-consent signals`: decodes, encodes and explains TC and GPP strings.
#pragma once

namespace CLI {
class App;
}

namespace quillon::tools {

void addSignalsCommand(CLI::App& app, int& exitCode);

}  // namespace quillon::tools
