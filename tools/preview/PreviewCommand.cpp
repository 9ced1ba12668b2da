#include "tools/preview/PreviewCommand.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <string>
#include <system_error>
#include <vector>

namespace quillon::tools {

void addPreviewCommand(CLI::App& app, int& exitCode) {
  auto* command = app.add_subcommand("preview", "Show a screen of a configuration, or write its picture");
  // All arguments after the name, including --help, belong to the other program.
  command->prefix_command();
  command->set_help_flag();
  command->callback([command, &exitCode] {
    std::error_code error;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
    std::string program = self.parent_path() / "quillon-consent-preview";
    std::vector<std::string> arguments = command->remaining();
    std::vector<char*> pointers{program.data()};
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    execv(program.c_str(), pointers.data());
    std::cerr << "quillon-consent-preview is not there: the screens were built without Qt Quick.\n";
    exitCode = 1;
  });
}

}  // namespace quillon::tools
