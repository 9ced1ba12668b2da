#include "tools/schema/SchemaCommand.h"

#include <CLI/CLI.hpp>
#include <iostream>

#include "tools/JsonLayout.h"
#include "tools/schema/Schema.h"

namespace quillon::tools {

void addSchemaCommand(CLI::App& app, int& exitCode) {
  auto* const command = app.add_subcommand("schema", "Prints the JSON Schema of configurations, for editors");
  command->callback([&exitCode] {
    std::cout << laidOut(configurationSchema()) << '\n';
    if (std::cout.flush()) return;
    std::cerr << "quillon-consent schema: standard output cannot be written\n";
    exitCode = 1;
  });
}

}  // namespace quillon::tools
