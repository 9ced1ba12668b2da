// Tables of texts as comma-separated values (RFC 4180).
#pragma once

#include <expected>
#include <string>
#include <string_view>
#include <vector>

#include "tools/texts/TextTable.h"

namespace quillon::tools {

// A row for each text: its identifier, a column for each language, and the languages that are missing. What a spread
// sheet would take for a formula has an apostrophe in front.
[[nodiscard]] std::string toCsv(const TextTable& table);

// Reads the same back, also with semicolons or tabs as other programs write them. Further columns called "missing" are
// skipped.
[[nodiscard]] std::expected<std::vector<Translation>, std::string> fromCsv(std::string_view text);

}  // namespace quillon::tools
