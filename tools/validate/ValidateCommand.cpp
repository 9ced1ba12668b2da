#include "tools/validate/ValidateCommand.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "core/Text/LogText.h"
#include "tools/ConfigurationFile.h"
#include "tools/PlainArguments.h"
#include "tools/validate/Lint.h"

namespace quillon::tools {
namespace {

constexpr const char* validateFooter = R"(
Each file gets one line on standard output: "FILE: ok", or "FILE: PATH: WHAT" with the first error. The exit status is 0
when all files are fine, else 1. With --lint, what would disappoint a user follows a file that is fine, one line each:
"FILE: warning: PATH: WHAT"; warnings do not change the exit status.)";

// Whether the file is valid.
bool validate(const std::string& path, bool withLint) {
  const auto configuration = configurationOf(path);
  // Keys and texts of the document are somebody else's.
  const auto print = [&path](const std::string& text) { std::cout << escapedForLog(path + ": " + text) << '\n'; };
  print(configuration ? "ok" : configuration.error());
  if (configuration && withLint) {
    lint(*configuration, [&](const Finding& finding) { print("warning: " + finding.path + ": " + finding.text); });
  }
  return configuration.has_value();
}

}  // namespace

void addValidateCommand(CLI::App& app, int& exitCode) {
  struct ValidateOptions {
    std::vector<std::string> files;
    bool lint = false;
  };
  const auto options = std::make_shared<ValidateOptions>();
  auto* const command = app.add_subcommand("validate", "Checks consent configurations");
  command->footer(validateFooter);
  command->add_option("FILE", options->files, "Configuration documents, of at most 32 MiB each")->required();
  command->add_flag("--lint", options->lint, "Also tell what would disappoint a user");

  command->callback([options, &exitCode] {
    for (const auto& file : options->files) {
      if (!validate(plain(file), options->lint)) exitCode = 1;
    }
    if (!std::cout.flush()) {
      std::cerr << "quillon-consent validate: standard output cannot be written\n";
      exitCode = 1;
    }
  });
}

}  // namespace quillon::tools
