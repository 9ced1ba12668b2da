// Tables of texts as XLIFF 1.2, which translators' programs read and write.
#pragma once

#include <expected>
#include <string>
#include <string_view>
#include <vector>

#include "tools/texts/TextTable.h"

namespace quillon::tools {

// A <file> for each language but the source's, with what is missing in the state "needs-translation". An error when a
// text has characters that XML cannot hold.
[[nodiscard]] std::expected<std::string, std::string> toXliff(const TextTable& table, std::string_view source,
                                                              std::string_view original);

// The targets of a document. An error also when a source is not the table's text any more: what came back translates
// something else.
[[nodiscard]] std::expected<std::vector<Translation>, std::string> fromXliff(std::string_view text,
                                                                             const TextTable& table);

}  // namespace quillon::tools
