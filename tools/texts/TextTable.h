// The texts of a configuration in all its languages, for translators.
#pragma once

#include <cstddef>
#include <expected>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "quillon/MainConfiguration.h"
#include "tools/document/Document.h"

namespace quillon::tools {

// A text or label.
struct TextRow {
  // Its place by what stays the same when the document is reordered: "purposes[2].purpose_name" is of the purpose whose
  // purpose_id is 2.
  std::string id;
  DocumentPath before;     // the path of the text in a language is before, the language, and after
  std::string after = {};  // empty except for labels
  std::map<std::string, std::string, std::less<>> texts = {};  // by language; those that are there

  [[nodiscard]] DocumentPath in(std::string_view language) const;
};

struct TextTable {
  std::vector<std::string> languages;  // English first, then in alphabetical order
  std::vector<TextRow> rows = {};      // texts in the order of the document, then labels
};

// With further languages that the configuration does not have yet. Labels that the configuration does not word are
// ours, in the languages that we have.
[[nodiscard]] TextTable textTable(const MainConfiguration& configuration, const std::vector<std::string>& further = {});

// A text that came back.
struct Translation {
  std::string id;
  std::string language;
  std::string text;
};

struct Translated {
  std::string document;
  std::size_t changed = 0;
};

// The document with the translations, of which those that are empty or nothing new change nothing; else the reason why
// one of them has no place.
[[nodiscard]] std::expected<Translated, std::string> translated(const Document& document,
                                                                const MainConfiguration& configuration,
                                                                const std::vector<Translation>& translations);

}  // namespace quillon::tools
