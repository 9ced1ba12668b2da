// A summary as one file that loads nothing, for screens and for paper.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/ReceiptSummary.h"

namespace quillon::proof {

// In the language, such as "de". Nothing of the summary can become mark-up.
[[nodiscard]] std::string htmlPage(const std::vector<ReceiptLine>& lines, std::string_view language,
                                   bool isRightToLeft);

}  // namespace quillon::proof
