// Tables of texts as comma-separated values (RFC 4180).
#pragma once

#include <expected>
#include <string>
#include <string_view>
#include <vector>

#include "tools/texts/TextTable.h"

namespace quillon::tools {

// One row per text: its identifier, a column per language, and the missing languages. Texts that a spreadsheet would
// read as formulas get a leading apostrophe.
[[nodiscard]] std::string toCsv(const TextTable& table);

// Reads such a table, also with semicolons or tabs. Columns named "missing" are ignored.
[[nodiscard]] std::expected<std::vector<Translation>, std::string> fromCsv(std::string_view text);

}  // namespace quillon::tools
