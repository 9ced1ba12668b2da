// What the privacy officer asks of the store, also while the receiver runs.
#pragma once

namespace CLI {
class App;
}

namespace quillon::receiver {

// Add the sub-commands; each leaves its exit status in exitCode, which must outlive the parsing.
void addSubjectCommands(CLI::App& app, int& exitCode);  // export, erase
void addExpireCommand(CLI::App& app, int& exitCode);
void addStatsCommand(CLI::App& app, int& exitCode);

}  // namespace quillon::receiver
