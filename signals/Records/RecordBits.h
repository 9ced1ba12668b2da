// Records in bits. An error names the field: "core.CmpId: 4096 does not fit into 12 bits".
#pragma once

#include <expected>
#include <string>
#include <string_view>

#include "signals/Records/Record.h"

namespace quillon::signals {

// Reads the fields one after another. Refuses a value that its field cannot have, such as another version, and whatever
// but zeros follows the last field.
[[nodiscard]] std::expected<Record, std::string> readRecord(const Layout& layout, std::string_view text,
                                                            IdBudget& budget);

// The text of the record, filled up with zeros to a multiple of @p multiple bits.
[[nodiscard]] std::expected<std::string, std::string> writeRecord(const Record& record, unsigned multiple);

}  // namespace quillon::signals
