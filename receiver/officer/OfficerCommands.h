// The privacy officer's commands on the store; safe while the receiver runs.
#pragma once

namespace CLI {
class App;
}

namespace quillon::receiver {

// Add the sub-commands; each sets exitCode, which must outlive the parsing.
void addSubjectCommands(CLI::App& app, int& exitCode);  // export, erase
void addExpireCommand(CLI::App& app, int& exitCode);
void addStatsCommand(CLI::App& app, int& exitCode);

}  // namespace quillon::receiver
