#include "tools/diff/DiffCommand.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <string>

#include "tools/ConfigurationFile.h"
#include "tools/diff/Differences.h"

namespace quillon::tools {
namespace {

constexpr const char* diffFooter = R"(
One line for each difference: "material: WHAT" when it changes what users agree to or what happens without their answer,
"cosmetic: WHAT" when it changes how that looks. The last line says who is asked again, and why. The exit status is 1 when
a file is no configuration.)";

}  // namespace

void addDiffCommand(CLI::App& app, int& exitCode) {
  struct DiffOptions {
    std::string before;
    std::string after;
  };
  const auto options = std::make_shared<DiffOptions>();
  auto* const command = app.add_subcommand("diff", "Says what a new configuration changes for users");
  command->footer(diffFooter);
  command->add_option("OLD", options->before, "The configuration that users have")->required();
  command->add_option("NEW", options->after, "The one that is to be published")->required();

  command->callback([options, &exitCode] {
    const auto before = configurationOf(options->before);
    const auto after = configurationOf(options->after);
    for (const auto& [path, configuration] :
         {std::pair(&options->before, &before), std::pair(&options->after, &after)}) {
      if (*configuration) continue;
      std::cerr << "quillon-consent diff: " << *path << ": " << configuration->error() << '\n';
      exitCode = 1;
    }
    if (!before || !after) return;
    for (const Difference& difference : differences(*before, *after)) {
      std::cout << (difference.isMaterial ? "material: " : "cosmetic: ") << difference.text << '\n';
    }
    std::cout << "asked again: " << whoIsAskedAgain(*before, *after) << '\n';
    if (!std::cout.flush()) {
      std::cerr << "quillon-consent diff: standard output cannot be written\n";
      exitCode = 1;
    }
  });
}

}  // namespace quillon::tools
