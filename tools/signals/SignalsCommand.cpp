#include "tools/signals/SignalsCommand.h"

#include <CLI/CLI.hpp>
#include <boost/json/parse.hpp>
#include <iostream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>

#include "signals/Json/SignalsJson.h"
#include "tools/FileContent.h"
#include "tools/signals/Explanation.h"
#include "tools/signals/StringFromJson.h"

namespace quillon::tools {
namespace {

using namespace quillon::signals;

constexpr const char* signalsFooter = R"(
STRING is a TC string or a GPP string, or "-" for the lines of standard input. decode prints one line of JSON for each,
its keys the names of the standards' tables; sets are lists of numbers, times whole seconds. encode reads such an object
from a file, or with "-" from standard input, and prints its string. explain says a string in words, with names from a
vendor list (--vendor-list). What cannot be read is told on standard error, and the exit status is 1.)";

// The first character encodes the type 3 of a GPP string, or the version 2 of a TC string.
bool isGpp(const std::string& text) {
  return text.starts_with('D');
}

// Calls @p say with the decoded string; its result may have several lines.
template <class F>
std::expected<std::string, std::string> read(const std::string& text, const F& say) {
  const auto said = [&say](const auto& string) -> std::expected<std::string, std::string> {
    return string ? std::expected<std::string, std::string>(say(*string)) : std::unexpected(string.error());
  };
  return isGpp(text) ? said(decodeGppString(text)) : said(decodeTcString(text));
}

std::expected<std::string, std::string> asJson(const std::string& text) {
  return read(text, [](const auto& string) {
    std::string line;
    writeJson(line, string);
    return line + '\n';
  });
}

std::expected<std::string, std::string> words(const std::string& text, const VendorList* list) {
  return read(text, [list](const auto& string) { return explanationOf(string, list); });
}

// Prints a result, or its error to standard error.
bool print(const std::expected<std::string, std::string>& result) {
  if (result) {
    std::cout << *result;
  } else {
    std::cerr << "quillon-consent signals: " << result.error() << '\n';
  }
  return result.has_value();
}

template <class F>
bool printEach(const std::string& argument, const F& made) {
  if (argument != "-") return print(made(argument));
  bool all = true;
  for (std::string line; std::getline(std::cin, line);) all = print(made(line)) && all;
  return all;
}

std::expected<std::string, std::string> encodeFile(const std::string& path) {
  const auto document = contentOf(path);
  if (!document) return std::unexpected("cannot be read: " + document.error());
  if (document->size() > largestDocument) return std::unexpected("document: larger than 32 MiB");
  boost::json::error_code error;
  const auto parsed = boost::json::parse(*document, error);
  if (error) return std::unexpected("document: " + error.message());
  auto text = stringFromJson(parsed);
  if (text) *text += '\n';
  return text;
}

bool explainWithList(const std::string& argument, const std::string& listPath) {
  std::optional<VendorList> list;
  if (!listPath.empty()) {
    const auto document = contentOf(listPath);
    if (!document) return print(std::unexpected(listPath + ": cannot be read: " + document.error()));
    auto read = readVendorList(*document);
    if (!read) return print(std::unexpected(listPath + ": " + read.error()));
    list = std::move(*read);
  }
  return printEach(argument, [&](const std::string& text) { return words(text, list ? &*list : nullptr); });
}

}  // namespace

void addSignalsCommand(CLI::App& app, int& exitCode) {
  struct SignalsOptions {
    std::string argument;
    std::string vendorList;
  };
  const auto options = std::make_shared<SignalsOptions>();
  auto* const command =
      app.add_subcommand("signals", "Reads, writes and explains the strings of the advertising trade");
  command->footer(signalsFooter);
  command->require_subcommand(1);
  const auto finish = [&exitCode](bool isFine) {
    if (!std::cout.flush()) {
      std::cerr << "quillon-consent signals: standard output cannot be written\n";
      isFine = false;
    }
    if (!isFine) exitCode = 1;
  };

  auto* const decode = command->add_subcommand("decode", "Prints a string as JSON");
  decode->add_option("STRING", options->argument, "The string")->required();
  decode->callback([options, finish] { finish(printEach(options->argument, asJson)); });

  auto* const encode = command->add_subcommand("encode", "Prints the string of a JSON object");
  encode->add_option("FILE", options->argument, "The file, or - for standard input")->required();
  encode->callback([options, finish] { finish(print(encodeFile(options->argument))); });

  auto* const explain = command->add_subcommand("explain", "Says a string in words");
  explain->add_option("STRING", options->argument, "The string")->required();
  explain->add_option("--vendor-list", options->vendorList, "A global vendor list, version 3, to take names from");
  explain->callback([options, finish] { finish(explainWithList(options->argument, options->vendorList)); });
}

}  // namespace quillon::tools
