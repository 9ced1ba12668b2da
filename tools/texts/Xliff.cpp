#include "tools/texts/Xliff.h"

#include <algorithm>
#include <pugixml.hpp>
#include <sstream>

namespace quillon::tools {
namespace {

constexpr const char* xliffNamespace = "urn:oasis:names:tc:xliff:document:1.2";

bool fitsXml(std::string_view text) {
  return std::ranges::none_of(
      text, [](char c) { return static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n' && c != '\r'; });
}

std::string_view textOf(const TextRow& row, std::string_view language) {
  const auto found = row.texts.find(language);
  return found == row.texts.end() ? std::string_view() : found->second;
}

// XML parsers normalize line breaks to "
// ".
std::string withPlainBreaks(std::string_view text) {
  std::string plain(text);
  std::erase(plain, '\r');
  return plain;
}

void addUnit(pugi::xml_node body, const TextRow& row, std::string_view source, std::string_view target) {
  auto unit = body.append_child("trans-unit");
  unit.append_attribute("id") = row.id.c_str();
  unit.append_attribute("xml:space") = "preserve";
  unit.append_child("source").text() = std::string(source).c_str();
  auto translation = unit.append_child("target");
  translation.append_attribute("state") = target.empty() ? "needs-translation" : "translated";
  translation.text() = std::string(target).c_str();
}

// The content of a text-only element.
std::expected<std::string, std::string> plainContent(const pugi::xml_node& element, std::string_view id) {
  std::string text;
  for (const auto& part : element.children()) {
    if (part.type() == pugi::node_element) {
      return std::unexpected(inQuotes(id) + " has an element " + inQuotes(part.name()) + " in its text");
    }
    text += part.value();
  }
  return text;
}

}  // namespace

std::expected<std::string, std::string> toXliff(const TextTable& table, std::string_view source,
                                                std::string_view original) {
  for (const TextRow& row : table.rows) {
    for (const auto& [language, text] : row.texts) {
      if (!fitsXml(text) || !fitsXml(row.id)) {
        return std::unexpected(inQuotes(row.id) + " has control characters in " + language + "; CSV can hold them");
      }
    }
  }
  pugi::xml_document document;
  auto declaration = document.append_child(pugi::node_declaration);
  declaration.append_attribute("version") = "1.0";
  declaration.append_attribute("encoding") = "UTF-8";
  auto root = document.append_child("xliff");
  root.append_attribute("version") = "1.2";
  root.append_attribute("xmlns") = xliffNamespace;
  for (const auto& language : table.languages) {
    if (language == source) continue;
    auto file = root.append_child("file");
    file.append_attribute("original") = std::string(original).c_str();
    file.append_attribute("source-language") = std::string(source).c_str();
    file.append_attribute("target-language") = language.c_str();
    file.append_attribute("datatype") = "html";
    auto body = file.append_child("body");
    for (const TextRow& row : table.rows) addUnit(body, row, textOf(row, source), textOf(row, language));
  }
  std::ostringstream out;
  document.save(out, "  ", pugi::format_default, pugi::encoding_utf8);
  return out.str();
}

std::expected<std::vector<Translation>, std::string> fromXliff(std::string_view text, const TextTable& table) {
  pugi::xml_document document;
  const auto parsed = document.load_buffer(text.data(), text.size(), pugi::parse_default | pugi::parse_ws_pcdata);
  if (!parsed) {
    return std::unexpected("byte " + std::to_string(parsed.offset) + ": " + std::string(parsed.description()));
  }
  const auto root = document.child("xliff");
  if (!root || !std::string_view(root.attribute("version").value()).starts_with("1.")) {
    return std::unexpected("this is no XLIFF of version 1");
  }
  std::map<std::string_view, const TextRow*> rows;
  for (const TextRow& row : table.rows) rows.emplace(row.id, &row);
  std::vector<Translation> translations;
  for (const auto& file : root.children("file")) {
    const std::string sourceLanguage = file.attribute("source-language").value();
    const std::string language = file.attribute("target-language").value();
    if (language.empty()) return std::unexpected("a file names no target-language");
    for (const auto& unit : file.child("body").children("trans-unit")) {
      const std::string id = unit.attribute("id").value();
      const auto row = rows.find(id);
      if (row == rows.end()) return std::unexpected("the configuration has no text " + inQuotes(id));
      const auto source = plainContent(unit.child("source"), id);
      auto target = plainContent(unit.child("target"), id);
      if (!source || !target) return std::unexpected((source ? target : source).error());
      if (withPlainBreaks(*source) != withPlainBreaks(textOf(*row->second, sourceLanguage))) {
        return std::unexpected(inQuotes(id) + " translates another text than the configuration has in " +
                               inQuotes(sourceLanguage));
      }
      if (withPlainBreaks(*target) == withPlainBreaks(textOf(*row->second, language))) continue;
      translations.push_back({id, language, *std::move(target)});
    }
  }
  return translations;
}

}  // namespace quillon::tools
