#pragma once

namespace CLI {
class App;
}

namespace quillon::receiver {

// The program without a sub-command: accepts uploads until SIGTERM.
void addServeOptions(CLI::App& app, int& exitCode);

}  // namespace quillon::receiver
