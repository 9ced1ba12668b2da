#include "tools/texts/TextsCommand.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "core/Json/Codec.h"
#include "core/Text/LogText.h"
#include "tools/FileContent.h"
#include "tools/texts/Csv.h"
#include "tools/texts/TextTable.h"
#include "tools/texts/Xliff.h"
#include "tools/validate/Codes.h"

namespace quillon::tools {
namespace {

constexpr const char* importFooter = R"(
The file is changed where a translation is new, and nowhere else. Empty translations change nothing. When one has no place
in the file, or translates a text that is another one there, nothing is changed and the exit status is 1.)";

struct TextsOptions {
  std::string file;
  std::string format = "csv";
  std::vector<std::string> languages;
  std::string translations;
  std::string out;
};

using Failure = std::unexpected<std::string>;
using Done = std::expected<void, std::string>;

struct Opened {
  Document document;
  MainConfiguration configuration;
};

std::expected<Opened, std::string> opened(const std::string& file) {
  auto content = contentOf(file);
  if (!content) return Failure(file + ": cannot be read: " + content.error());
  auto configuration = decode<MainConfiguration>(*content);
  if (!configuration) return Failure(file + ": " + configuration.error());
  auto document = Document::parse(*std::move(content));
  if (!document) return Failure(file + ": " + document.error().text);
  return Opened{*std::move(document), *std::move(configuration)};
}

Done written(const std::string& file, std::string_view content) {
  auto done = replaceContent(file, content);
  return done ? done : Failure(file + ": cannot be written: " + done.error());
}

Done exportTexts(const TextsOptions& options) {
  const auto source = opened(options.file);
  if (!source) return Failure(source.error());
  for (const auto& language : options.languages) {
    if (const auto problem = languageProblem(language); !problem.empty()) return Failure(problem);
  }
  TextTable table = textTable(source->configuration, options.languages);
  if (!options.languages.empty()) {
    std::erase_if(table.languages, [&](const std::string& language) {
      return language != "en" && std::ranges::find(options.languages, language) == options.languages.end();
    });
  }
  const std::string out = options.out.empty() ? "-" : options.out;
  if (options.format == "csv") return written(out, toCsv(table));
  const auto xliff = toXliff(table, "en", std::filesystem::path(options.file).filename().string());
  return xliff ? written(out, *xliff) : Failure(xliff.error());
}

Done importTexts(const TextsOptions& options) {
  const auto target = opened(options.file);
  if (!target) return Failure(target.error());
  const auto content = contentOf(options.translations);
  if (!content) return Failure(options.translations + ": cannot be read: " + content.error());
  if (content->size() > largestDocument) return Failure(options.translations + ": larger than 32 MiB");
  const bool isXml = content->starts_with('<') || content->starts_with("\xEF\xBB\xBF<");
  const auto translations = isXml ? fromXliff(*content, textTable(target->configuration)) : fromCsv(*content);
  if (!translations) return Failure(options.translations + ": " + translations.error());
  const auto result = translated(target->document, target->configuration, *translations);
  if (!result) return Failure(options.translations + ": " + result.error());
  if (const auto still = decode<MainConfiguration>(result->document); !still) return Failure(still.error());
  const bool isElsewhere = !options.out.empty() && options.out != options.file;
  if (result->changed > 0 || isElsewhere) {
    if (auto done = written(isElsewhere ? options.out : options.file, result->document); !done) return done;
  }
  std::cerr << result->changed << (result->changed == 1 ? " text changed\n" : " texts changed\n");
  return {};
}

}  // namespace

void addTextsCommand(CLI::App& app, int& exitCode) {
  const auto options = std::make_shared<TextsOptions>();
  auto* const command = app.add_subcommand("texts", "Hands texts to translators and takes them back");
  command->require_subcommand(1);
  const auto add = [&](const char* name, const char* what, Done (*run)(const TextsOptions&)) {
    auto* const part = command->add_subcommand(name, what);
    part->add_option("FILE", options->file, "The configuration")->required();
    part->callback([options, run, &exitCode] {
      const auto done = run(*options);
      if (done) return;
      std::cerr << "quillon-consent texts: " << escapedForLog(done.error()) << '\n';
      exitCode = 1;
    });
    return part;
  };
  auto* const exported = add("export", "Writes a table of all texts and labels", &exportTexts);
  exported->add_option("--format", options->format, "csv, or xliff (1.2)")
      ->check(CLI::IsMember({"csv", "xliff"}))
      ->capture_default_str();
  exported->add_option("--language", options->languages,
                       "Only this one and English; may be new. Several times for more");
  exported->add_option("--out", options->out, "The file to write, in place of standard output");
  auto* const imported = add("import", "Puts translations in their places", &importTexts);
  imported->add_option("TRANSLATIONS", options->translations, "A table as it was exported, CSV or XLIFF")->required();
  imported->add_option("--out", options->out, "The file to write, in place of FILE; - is standard output");
  imported->footer(importFooter);
}

}  // namespace quillon::tools
