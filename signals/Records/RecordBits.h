// The binary form of records. Errors name the field: "core.CmpId: 4096 does not fit into 12 bits".
#pragma once

#include <expected>
#include <string>
#include <string_view>

#include "signals/Records/Record.h"

namespace quillon::signals {

// Rejects values that a field cannot have, such as an unsupported version, and non-zero bits after the last field.
[[nodiscard]] std::expected<Record, std::string> readRecord(const Layout& layout, std::string_view text,
                                                            IdBudget& budget);

// The record as text, zero-padded to a multiple of @p multiple bits.
[[nodiscard]] std::expected<std::string, std::string> writeRecord(const Record& record, unsigned multiple);

}  // namespace quillon::signals
