#include "tools/init/InitCommand.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "core/Text/Ascii.h"
#include "core/Text/LogText.h"
#include "tools/FileContent.h"
#include "tools/JsonLayout.h"
#include "tools/init/NewConfiguration.h"
#include "tools/validate/Check.h"

namespace quillon::tools {
namespace {

constexpr const char* initFooter = R"(
What no option names is asked for when a terminal is there. A PLACE is a country or a part of one, such as DE or US#CA; EU
stands for the countries of the European Economic Area with the United Kingdom and Switzerland. Purposes that have texts
already: essential, measurement, advertising, personalisation, diagnostics, media; any other text is the name of a purpose
in the first language, or as "en=Plans|de=Pläne" in several. An existing file is never replaced.)";

struct InitOptions {
  std::string file;
  NewConfiguration wishes;
  std::vector<std::string> optIn;
  std::vector<std::string> optOut;
  std::vector<std::string> noticeOnly;
  std::string otherwise;
};

std::vector<std::string> partsOf(std::string_view text) {
  std::vector<std::string> parts;
  while (!text.empty()) {
    const auto comma = std::min(text.find(','), text.size());
    if (const auto part = trimmed(text.substr(0, comma)); !part.empty()) parts.emplace_back(part);
    text.remove_prefix(std::min(comma + 1, text.size()));
  }
  return parts;
}

void ask(const char* question, const std::string& otherwise, std::string& answer) {
  if (!answer.empty()) return;
  std::cerr << question << (otherwise.empty() ? "" : " [" + otherwise + "]") << ": ";
  std::getline(std::cin, answer);
  if (answer.empty()) answer = otherwise;
}

void ask(const char* question, const std::string& otherwise, std::vector<std::string>& answers) {
  if (!answers.empty()) return;
  std::string answer;
  ask(question, otherwise, answer);
  answers = partsOf(answer);
}

void askForWhatIsMissing(InitOptions& options) {
  auto& wishes = options.wishes;
  ask("Name of the application", "", wishes.name);
  ask("Languages, by comma", "en", wishes.languages);
  ask("Purposes, by comma", "essential,measurement", wishes.purposes);
  ask("Permissions, by comma, such as NSCameraUsageDescription", "", wishes.permissions);
  ask("Places where users opt in", "EU", options.optIn);
  ask("Places where users opt out", "", options.optOut);
  ask("Rule elsewhere: opt-in, opt-out or notice-only", "opt-in", options.otherwise);
  ask("Address of the privacy notice", "", wishes.privacyNotice);
  ask("Access token for uploads", "", wishes.token);
}

void addPlaces(const std::vector<std::string>& regions, const char* type, NewConfiguration& wishes) {
  for (const auto& region : regions) {
    for (const auto& place : placesOf(region)) wishes.places[place] = type;
  }
}

std::expected<void, std::string> init(InitOptions options) {
  std::error_code none;
  if (options.file != "-" && std::filesystem::exists(std::filesystem::symlink_status(options.file, none))) {
    return std::unexpected(options.file + " is there already");
  }
  if (isatty(STDIN_FILENO) != 0 && isatty(STDERR_FILENO) != 0) askForWhatIsMissing(options);
  auto& wishes = options.wishes;
  if (wishes.languages.empty()) wishes.languages = {"en"};
  addPlaces(options.noticeOnly, "notice-only", wishes);
  addPlaces(options.optOut, "opt-out", wishes);
  addPlaces(options.optIn, "opt-in", wishes);
  wishes.places["default"] = options.otherwise.empty() ? "opt-in" : options.otherwise;
  const auto document = documentOf(wishes);
  if (!document) return std::unexpected(document.error());
  const std::string text = laidOut(*document) + '\n';
  if (const auto done = replaceContent(options.file, text); !done) {
    return std::unexpected(options.file + ": cannot be written: " + done.error());
  }
  for (const auto& finding : check(text, {.lint = true}).findings) {
    std::cerr << escapedForLog("to do: " + finding.path + ": " + finding.text) << '\n';
  }
  return {};
}

}  // namespace

void addInitCommand(CLI::App& app, int& exitCode) {
  const auto options = std::make_shared<InitOptions>();
  auto* const command = app.add_subcommand("init", "Writes a configuration to begin with");
  command->footer(initFooter);
  auto& wishes = options->wishes;
  const auto addList = [command](const char* name, std::vector<std::string>& list, const char* what) {
    command->add_option(name, list, what)->delimiter(',');
  };
  command->add_option("FILE", options->file, "The file to write; - is standard output")->required();
  command->add_option("--name", wishes.name, "Of the application");
  addList("--language", wishes.languages, "Of the texts: en, de and fr have theirs already");
  addList("--purpose", wishes.purposes, "What users decide on");
  addList("--permission", wishes.permissions, "What the application uses, such as NSCameraUsageDescription");
  addList("--opt-in", options->optIn, "PLACEs where nothing happens until users agree");
  addList("--opt-out", options->optOut, "PLACEs where users can object");
  addList("--notice-only", options->noticeOnly, "PLACEs where users are told");
  command
      ->add_option("--elsewhere", options->otherwise, "The rule in all other places: opt-in, if nothing else is said")
      ->check(CLI::IsMember({"opt-in", "opt-out", "notice-only"}));
  command->add_option("--privacy-notice", wishes.privacyNotice, "Its address");
  command->add_option("--token", wishes.token, "The access token for uploads");
  command->callback([options, &exitCode] {
    const auto done = init(*options);
    if (done) return;
    std::cerr << "quillon-consent init: " << escapedForLog(done.error()) << '\n';
    exitCode = 1;
  });
}

}  // namespace quillon::tools
