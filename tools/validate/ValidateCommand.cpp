#include "tools/validate/ValidateCommand.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "tools/ConfigurationFile.h"
#include "tools/FileContent.h"
#include "tools/PlainArguments.h"
#include "tools/preview/WarmPreview.h"
#include "tools/validate/Check.h"
#include "tools/validate/ConfigurationFiles.h"
#include "tools/validate/Output.h"

namespace quillon::tools {
namespace {

constexpr const char* validateFooter = R"(
A file that the SDK takes gets the line "FILE: ok". Each finding gets a line "FILE:LINE:COLUMN: LEVEL: PATH: WHAT [RULE]".
Errors are what the SDK refuses; with --lint, warnings tell what would disappoint a user. The exit status is that of the
most severe finding: 1 for an error, 2 for a warning and 3 for a note, as far as --fail-on counts it, else 0.)";

struct ValidateOptions {
  std::vector<std::string> files;
  bool lint = false;
  bool fairness = false;
  bool drawn = false;
  std::string live;
  std::string format = "text";
  Level failOn = Level::error;
};

namespace fs = std::filesystem;

bool isFolder(const std::string& path) {
  std::error_code error;
  return fs::is_directory(path, error);
}

CheckedFile unreadable(const std::string& name, const std::string& why) {
  return {.name = name, .isValid = false, .findings = {{Level::error, "file", "document", why}}};
}

CheckedFile checkFile(const std::string& name, const std::string& live, const ValidateOptions& options,
                      WarmPreview& screens) {
  const auto content = contentOf(name);
  if (!content) return unreadable(name, "cannot be read: " + content.error());
  std::expected<MainConfiguration, std::string> published;
  if (!live.empty() && !(published = configurationOf(live))) {
    return unreadable(name, "cannot be compared with " + live + ": " + published.error());
  }
  auto [configuration, findings] = check(*content, {.lint = options.lint,
                                                    .fairness = options.fairness,
                                                    .live = live.empty() ? nullptr : &*published,
                                                    .screens = options.drawn ? &screens : nullptr});
  return {.name = name, .isValid = configuration.has_value(), .findings = std::move(findings)};
}

// The files below the folder, each compared with the one of the same name below the live folder, if there is one.
std::vector<CheckedFile> checkFolder(const std::string& folder, const ValidateOptions& options, WarmPreview& screens) {
  const auto names = configurationsBelow(folder);
  if (!names) return {unreadable(folder, names.error())};
  std::vector<CheckedFile> files;
  for (const auto& name : *names) {
    std::string live;
    if (isFolder(options.live)) {
      live = fs::path(options.live) / fs::path(name).lexically_relative(folder);
      std::error_code error;
      if (!fs::exists(live, error)) live.clear();
    } else {
      live = options.live;
    }
    files.push_back(checkFile(name, live, options, screens));
  }
  return files;
}

int statusOf(const std::vector<CheckedFile>& files, Level failOn) {
  int worst = -1;
  for (const auto& file : files) {
    for (const auto& finding : file.findings) worst = std::max(worst, static_cast<int>(finding.level));
  }
  return worst < static_cast<int>(failOn) ? 0 : 1 + static_cast<int>(Level::error) - worst;
}

void run(const ValidateOptions& options, int& exitCode) {
  WarmPreview screens;  // the program starts on the first drawing
  std::vector<CheckedFile> all;
  for (const auto& argument : options.files) {
    const std::string name = plain(argument);
    auto files = isFolder(name) ? checkFolder(name, options, screens)
                                : std::vector{checkFile(name, options.live, options, screens)};
    std::ranges::move(files, std::back_inserter(all));
  }
  if (options.format == "json") {
    writeJson(std::cout, all);
  } else if (options.format == "sarif") {
    writeSarif(std::cout, all);
  } else {
    for (const auto& file : all) writeText(std::cout, file);
  }
  exitCode = statusOf(all, options.failOn);
  if (!std::cout.flush()) {
    std::cerr << "quillon-consent validate: standard output cannot be written\n";
    exitCode = 1;
  }
}

}  // namespace

void addValidateCommand(CLI::App& app, int& exitCode) {
  const auto options = std::make_shared<ValidateOptions>();
  auto* const command = app.add_subcommand("validate", "Checks consent configurations");
  command->footer(validateFooter);
  command
      ->add_option("FILE", options->files,
                   "Configuration documents, of at most 32 MiB each, or folders of config.json and "
                   "config_LANGUAGE.json files")
      ->required();
  command->add_flag("--lint", options->lint, "Also tell what would disappoint a user");
  command->add_flag("--fairness", options->fairness, "Also tell what would be unfair to a user");
  command->add_flag("--drawn", options->drawn,
                    "Also draw the banners, and tell where their answers do not weigh the same");
  command->add_option("--against", options->live,
                      "What is live, a file or folder: a material change needs a greater version");
  command->add_option("--format", options->format, "Of the output")
      ->check(CLI::IsMember({"text", "json", "sarif"}))
      ->capture_default_str();
  const std::map<std::string, Level> levels{
      {"error", Level::error}, {"warning", Level::warning}, {"note", Level::note}};
  command->add_option("--fail-on", options->failOn, "The least level that fails: error (the default), warning or note")
      ->transform(CLI::CheckedTransformer(levels).description(""));
  command->callback([options, &exitCode] { run(*options, exitCode); });
}

}  // namespace quillon::tools
