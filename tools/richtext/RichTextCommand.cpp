#include "tools/richtext/RichTextCommand.h"

#include <CLI/CLI.hpp>
#include <boost/json/serialize.hpp>
#include <expected>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>

#include "ui/Common/RichText/RichText.h"

namespace quillon::tools {
namespace {

constexpr const char* richTextFooter = R"(
Prints the styled text that the consent screens show for it: one JSON array with a line for each run. "font" is body, bold
or italic, "scale" the size relative to that of the body text. The exit status is 1 when the file cannot be read or is
refused.)";

std::expected<std::string, std::string> contentOf(const std::string& path) {
  std::ifstream file;
  if (path != "-") file.open(path, std::ios::binary);
  std::istream& input = path == "-" ? std::cin : file;
  if (!input) return std::unexpected("cannot be opened");
  std::string content(largestHtml + 1, '\0');  // one byte above the limit is rejected
  input.read(content.data(), static_cast<std::streamsize>(content.size()));
  if (input.bad()) return std::unexpected("cannot be read");
  content.resize(static_cast<std::size_t>(input.gcount()));
  return content;
}

void print(const AttributedText& text) {
  constexpr const char* fonts[]{"body", "bold", "italic"};
  const auto truth = [](bool value) { return value ? "true" : "false"; };
  std::cout << '[';
  for (const char* separator = "\n"; const auto& run : text.runs) {
    std::cout << separator << R"({"text":)" << boost::json::serialize(boost::json::string(run.text)) << R"(,"font":")"
              << fonts[run.font] << R"(","scale":)" << run.scale << R"(,"underline":)" << truth(run.underline)
              << R"(,"strikethrough":)" << truth(run.strikethrough) << R"(,"link":)"
              << (run.link ? boost::json::serialize(boost::json::string(*run.link)) : "null") << '}';
    separator = ",\n";
  }
  std::cout << "\n]" << std::endl;
}

std::expected<void, std::string> convert(const std::string& path) {
  const auto html = contentOf(path);
  if (!html) return std::unexpected(html.error());
  const auto text = richTextFromHtml(*html);
  if (!text) return std::unexpected("is larger than 256 KiB, or has too many tags and attributes");
  print(*text);
  if (!std::cout) return std::unexpected("was read, but standard output cannot be written");
  return {};
}

}  // namespace

void addRichTextCommand(CLI::App& app, int& exitCode) {
  const auto file = std::make_shared<std::string>();
  auto* const command = app.add_subcommand("richtext", "Shows what becomes of an HTML text");
  command->footer(richTextFooter);
  command->add_option("FILE", *file, "The HTML text; \"-\" is standard input")->required();
  command->callback([file, &exitCode] {
    if (const auto done = convert(*file); !done) {
      std::cerr << "quillon-consent richtext: " << *file << ' ' << done.error() << '\n';
      exitCode = 1;
    }
  });
}

}  // namespace quillon::tools
