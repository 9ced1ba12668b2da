// A summary as a self-contained HTML file, for screen and print.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/ReceiptSummary.h"

namespace quillon::proof {

// `language` is a code such as "de". All text is escaped.
[[nodiscard]] std::string htmlPage(const std::vector<ReceiptLine>& lines, std::string_view language,
                                   bool isRightToLeft);

}  // namespace quillon::proof
