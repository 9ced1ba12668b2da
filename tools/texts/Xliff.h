// Text tables as XLIFF 1.2, the exchange format of translation tools.
#pragma once

#include <expected>
#include <string>
#include <string_view>
#include <vector>

#include "tools/texts/TextTable.h"

namespace quillon::tools {

// One <file> per target language; missing texts have the state "needs-translation". An error if a text has characters
// that XML does not allow.
[[nodiscard]] std::expected<std::string, std::string> toXliff(const TextTable& table, std::string_view source,
                                                              std::string_view original);

// The translations in a document. An error also if a source differs from the table's text, since the translation is
// then outdated.
[[nodiscard]] std::expected<std::vector<Translation>, std::string> fromXliff(std::string_view text,
                                                                             const TextTable& table);

}  // namespace quillon::tools
