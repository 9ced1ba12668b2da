// The localized texts of a configuration as a table for translators.
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
  // Identifies the text independently of the document's order: "purposes[2].purpose_name" belongs to the purpose whose
  // purpose_id is 2.
  std::string id;
  DocumentPath before;                                         // a text's path is `before`, the language, then `after`
  std::string after = {};                                      // empty except for labels
  std::map<std::string, std::string, std::less<>> texts = {};  // by language; existing texts only

  [[nodiscard]] DocumentPath in(std::string_view language) const;
};

struct TextTable {
  std::vector<std::string> languages;  // English first, then alphabetical
  std::vector<TextRow> rows = {};      // texts in document order, then labels
};

// Includes columns for `further` languages. Labels missing from the configuration are the built-in ones, in the
// built-in languages.
[[nodiscard]] TextTable textTable(const MainConfiguration& configuration, const std::vector<std::string>& further = {});

// A text returned by a translator.
struct Translation {
  std::string id;
  std::string language;
  std::string text;
};

struct Translated {
  std::string document;
  std::size_t changed = 0;
};

// The document with the translations applied; empty and unchanged ones are ignored. The error names a translation that
// does not belong to any text.
[[nodiscard]] std::expected<Translated, std::string> translated(const Document& document,
                                                                const MainConfiguration& configuration,
                                                                const std::vector<Translation>& translations);

}  // namespace quillon::tools
